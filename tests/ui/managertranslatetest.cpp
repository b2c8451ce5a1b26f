#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "ui/managertranslate.h"
#include "ui/uisettings.h"

namespace {

// A screen with one widget of every kind the walk treats, each showing a text
// the translation files know.
struct SampleScreen {
    QDialog window;
    QLabel* label;
    QPushButton* button;
    QCheckBox* check;
    QRadioButton* radio;
    QGroupBox* group;
    QLineEdit* lineEdit;
    QTextEdit* textEdit;
    QPlainTextEdit* plainEdit;
    QSpinBox* spin;
    QComboBox* combo;
    QComboBox* unselected;
    QListWidget* list;
    QTabWidget* tabs;
    QLabel* labelInTab;
    QTableWidget* table;
    QTreeWidget* tree;

    SampleScreen()
    {
        window.setWindowTitle(QStringLiteral("Elastic"));
        auto* layout = new QVBoxLayout(&window);
        const auto add = [&](auto* widget) {
            layout->addWidget(widget);
            return widget;
        };
        label = add(new QLabel(QStringLiteral("Elastic")));
        button = add(new QPushButton(QStringLiteral("Export")));
        check = add(new QCheckBox(QStringLiteral("Plastic")));
        radio = add(new QRadioButton(QStringLiteral("Room temperature")));
        group = add(new QGroupBox(QStringLiteral("Thermal")));
        auto* groupLayout = new QVBoxLayout(group);
        lineEdit = new QLineEdit(QStringLiteral("Elastic"));
        groupLayout->addWidget(lineEdit);  // an edit inside a group: still user data
        textEdit = add(new QTextEdit(QStringLiteral("Elastic")));
        plainEdit = add(new QPlainTextEdit(QStringLiteral("Elastic")));
        spin = add(new QSpinBox);
        spin->setSuffix(QStringLiteral("Elastic"));
        combo = add(new QComboBox);
        combo->addItem(QStringLiteral("Plastic"), 10);
        combo->addItem(QStringLiteral("Unknown"), 11);
        combo->addItem(QStringLiteral("Thermal"), 12);
        combo->setCurrentIndex(2);
        unselected = add(new QComboBox);
        unselected->addItems({QStringLiteral("Elastic"), QStringLiteral("Plastic")});
        unselected->setCurrentIndex(-1);
        list = add(new QListWidget);
        list->addItem(QStringLiteral("Elastic"));
        tabs = add(new QTabWidget);
        labelInTab = new QLabel(QStringLiteral("Plastic"));
        tabs->addTab(labelInTab, QStringLiteral("Elastic"));
        table = add(new QTableWidget(2, 3));
        table->setHorizontalHeaderLabels({QStringLiteral("Thermal"), QStringLiteral("Unknown"), QStringLiteral("Plastic")});
        tree = add(new QTreeWidget);
        tree->setHeaderLabels({QStringLiteral("Elastic"), QStringLiteral("Thermal")});
    }

    // Every text the walk may change, in one line, for whole comparisons.
    QString translatableTexts() const
    {
        QStringList texts{window.windowTitle(), label->text(), button->text(), check->text(), radio->text(),
                          group->title()};
        for (int i = 0; i < combo->count(); ++i)
            texts << combo->itemText(i);
        for (int i = 0; i < unselected->count(); ++i)
            texts << unselected->itemText(i);
        texts << labelInTab->text();
        for (int i = 0; i < table->columnCount(); ++i)
            texts << table->horizontalHeaderItem(i)->text();
        texts << tree->headerItem()->text(0) << tree->headerItem()->text(1);
        return texts.join(u'|');
    }

    QString userTexts() const
    {
        return QStringList{lineEdit->text(), textEdit->toPlainText(), plainEdit->toPlainText(), spin->suffix(),
                           list->item(0)->text(), tabs->tabText(0)}
            .join(u'|');
    }
};

const QString kEnglish = QStringLiteral(
    "Elastic|Elastic|Export|Plastic|Room temperature|Thermal|Plastic|Unknown|Thermal|Elastic|Plastic|Plastic|"
    "Thermal|Unknown|Plastic|Elastic|Thermal");
const QString kKorean = QStringLiteral(
    "탄성|탄성|내보내기|소성|상온|열|소성|Unknown|열|탄성|소성|소성|열|Unknown|소성|탄성|열");
const QString kJapanese = QStringLiteral(
    "弾性|弾性|エクスポート|塑性|Room temperature|熱|塑性|Unknown|熱|弾性|塑性|塑性|熱|Unknown|塑性|弾性|熱");
// The screen translated as it opens under langId.
void translateAs(ManagerTranslate& translator, QWidget* window, int langId,
                 const QString& section = QStringLiteral("Sample"))
{
    zelko::ui::setCurrentLanguageId(langId);
    translator.translateWindow(window, section);
}

// The frame's Options command: the language changes and the long-lived view follows.
void changeLanguage(ManagerTranslate& view, QWidget* window, int langId)
{
    const int oldLangId = zelko::ui::currentLanguageId();
    zelko::ui::setCurrentLanguageId(langId);
    zelko::ui::retranslateAfterLanguageChange(view, window, QStringLiteral("Sample"), oldLangId);
}

const QString kUserTexts = QStringLiteral("Elastic|Elastic|Elastic|Elastic|Elastic|Elastic");

}  // namespace

class ManagerTranslateTest : public QObject {
    Q_OBJECT
private:
    QTemporaryDir installation_;

    void writeFile(const char* language, const char* section, const QByteArray& content)
    {
        const QString folder = installation_.path() + QStringLiteral("/language/ZELKO_MAT/") + QLatin1String(language);
        QVERIFY(QDir().mkpath(folder));
        QFile file(folder + u'/' + QLatin1String(section) + QStringLiteral(".txt"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(installation_.isValid());
        qputenv("ZELKO_V24R02", installation_.path().toUtf8());
        writeFile("Korean", "Sample",
                  "Elastic\\탄성\nPlastic\\소성\nThermal\\열\nExport\\내보내기\nRoom temperature\\상온\n");
        // Japanese leaves "Room temperature" out: reverting must still use the Korean entry.
        writeFile("Japanese", "Sample", "\xEF\xBB\xBF" "Elastic\\弾性\r\nPlastic\\塑性\r\nThermal\\熱\r\nExport\\エクスポート\r\n");
        // English is never read from a file; this one would show if it were.
        writeFile("English", "Sample", "Elastic\\Wrong\nPlastic\\Wrong\n");
        writeFile("Korean", "Menus",
                  "&File\\파일(&F)\n&New\tCtrl+N\\새로 만들기(&N)\tCtrl+N\nRecent\\최근\n"
                  // A chain: an item translated twice would end at the second entry.
                  "새로 만들기(&N)\tCtrl+N\\twice\n");
    }

    void init() { zelko::ui::setCurrentLanguageId(0); }

    void englishAtStartUpTouchesNothing()
    {
        SampleScreen screen;
        ManagerTranslate translator;
        translator.translateWindow(&screen.window, QStringLiteral("Sample"));
        QVERIFY(translator.translationTable().empty());
        QVERIFY(translator.translationTable().reverse());
        QCOMPARE(screen.translatableTexts(), kEnglish);
        QCOMPARE(screen.userTexts(), kUserTexts);
    }

    void translatesLabelsButtonsGroupsCombosAndColumnCaptions_data()
    {
        QTest::addColumn<int>("langId");
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QString>("plastic");
        QTest::newRow("Korean") << 1 << kKorean << QStringLiteral("소성");
        // Japanese has no entry for "Room temperature": it stays English.
        QTest::newRow("Japanese") << 2 << kJapanese << QStringLiteral("塑性");
    }

    void translatesLabelsButtonsGroupsCombosAndColumnCaptions()
    {
        QFETCH(int, langId);
        QFETCH(QString, texts);
        QFETCH(QString, plastic);
        SampleScreen screen;
        ManagerTranslate translator;
        translateAs(translator, &screen.window, langId);
        QCOMPARE(screen.translatableTexts(), texts);
        QCOMPARE(screen.userTexts(), kUserTexts);
        // Row numbers are not captions: no header item appears for them.
        QCOMPARE(screen.table->verticalHeaderItem(0), nullptr);
        QCOMPARE(translator.translateText(QStringLiteral("Plastic")), plastic);
        QCOMPARE(translator.translateText(u"Plastic"), plastic.toStdU16String());
    }

    void comboKeepsItsOrderSelectionAndData()
    {
        SampleScreen screen;
        QSignalSpy changes(screen.combo, &QComboBox::currentIndexChanged);
        QSignalSpy unselectedChanges(screen.unselected, &QComboBox::currentIndexChanged);
        ManagerTranslate translator;
        translateAs(translator, &screen.window, 2);
        QCOMPARE(screen.combo->count(), 3);
        QCOMPARE(screen.combo->currentIndex(), 2);
        QCOMPARE(screen.combo->currentText(), QStringLiteral("熱"));
        QCOMPARE(screen.combo->itemText(0), QStringLiteral("塑性"));
        QCOMPARE(screen.combo->itemData(0).toInt(), 10);
        QCOMPARE(screen.combo->itemData(2).toInt(), 12);
        QCOMPARE(screen.unselected->currentIndex(), -1);
        // The user did not choose anything: no change is announced.
        QCOMPARE(changes.count(), 0);
        QCOMPARE(unselectedChanges.count(), 0);
    }

    void koreanThenJapaneseRevertsThroughTheUnion()
    {
        SampleScreen screen;
        ManagerTranslate view;  // lives as long as the frame: its table only grows
        view.translateWindow(&screen.window, QStringLiteral("Sample"));

        changeLanguage(view, &screen.window, 1);
        QCOMPARE(screen.translatableTexts(), kKorean);

        changeLanguage(view, &screen.window, 2);
        // The texts went back to English through the Korean entries before Japanese
        // applied; "Room temperature" has only its Korean entry, which the union keeps.
        const QString withKoreanLeft =
            QString(kJapanese).replace(QStringLiteral("Room temperature"), QStringLiteral("상온"));
        QCOMPARE(screen.translatableTexts(), withKoreanLeft);
        QCOMPARE(view.translationTable().entries().size(), 5u);
        QCOMPARE(screen.userTexts(), kUserTexts);

        changeLanguage(view, &screen.window, 0);
        QCOMPARE(screen.translatableTexts(), kEnglish);

        changeLanguage(view, &screen.window, 1);
        QCOMPARE(screen.translatableTexts(), kKorean);
        QCOMPARE(screen.userTexts(), kUserTexts);
    }

    void withoutRevertingTheNewFileMissesTheOldTexts()
    {
        // Why the change goes through English: Japanese keys are English texts.
        SampleScreen screen;
        ManagerTranslate view;
        translateAs(view, &screen.window, 1);
        translateAs(view, &screen.window, 2);
        QCOMPARE(screen.translatableTexts(), kKorean);
    }

    void missingFileLeavesTheWindowAlone()
    {
        SampleScreen screen;
        ManagerTranslate translator;
        translateAs(translator, &screen.window, 1, QStringLiteral("NoSuchScreen"));
        QVERIFY(translator.translationTable().empty());
        QCOMPARE(screen.translatableTexts(), kEnglish);
        // A number without a language looks in the English folder, which holds no
        // file for this screen (none is shipped), so nothing changes either.
        translateAs(translator, &screen.window, 7, QStringLiteral("Menus"));
        QVERIFY(translator.translationTable().empty());
        QCOMPARE(screen.translatableTexts(), kEnglish);
    }

    void mainWindowMenusAreTranslatedOnce()
    {
        QMainWindow frame;
        frame.setWindowTitle(QStringLiteral("ZELKO_MAT"));
        QMenu* file = frame.menuBar()->addMenu(QStringLiteral("&File"));
        QAction* newAction = file->addAction(QStringLiteral("&New\tCtrl+N"));
        QMenu* recent = file->addMenu(QStringLiteral("Recent"));
        QAction* unknown = recent->addAction(QStringLiteral("Unknown"));
        // The toolbar shows the same action; it must not be translated a second time.
        frame.addToolBar(QStringLiteral("Tools"))->addAction(newAction);
        ManagerTranslate translator;
        translateAs(translator, &frame, 1, QStringLiteral("Menus"));
        QCOMPARE(frame.windowTitle(), QStringLiteral("ZELKO_MAT"));
        QCOMPARE(file->title(), QStringLiteral("파일(&F)"));
        QCOMPARE(newAction->text(), QStringLiteral("새로 만들기(&N)\tCtrl+N"));
        QCOMPARE(recent->title(), QStringLiteral("최근"));
        QCOMPARE(unknown->text(), QStringLiteral("Unknown"));

        translateAs(translator, &frame, 0, QStringLiteral("Menus"));
        QCOMPARE(file->title(), QStringLiteral("&File"));
        QCOMPARE(newAction->text(), QStringLiteral("&New\tCtrl+N"));
    }
};

QTEST_MAIN(ManagerTranslateTest)
#include "managertranslatetest.moc"
