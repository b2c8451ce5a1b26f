#include <QtTest>

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>

#include "ui/dialogoption.h"
#include "ui/uisettings.h"

namespace {

QComboBox* languages(const CDialogOption& dialog) { return dialog.findChild<QComboBox*>(QStringLiteral("languages")); }

// Caption, category, group title, labels and buttons as the user sees them.
QString shownTexts(const CDialogOption& dialog)
{
    QStringList texts{dialog.windowTitle(),
                      dialog.findChild<QListWidget*>(QStringLiteral("categories"))->item(0)->text()};
    for (const QGroupBox* group : dialog.findChildren<QGroupBox*>())
        texts << group->title();
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        texts << label->text();
    for (const QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        texts << button->text();
    return texts.join(u'|');
}

QAbstractButton* buttonNamed(const CDialogOption& dialog, const QString& text)
{
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        if (button->text() == text)
            return button;
    return nullptr;
}

QString comboItems(const CDialogOption& dialog)
{
    QStringList items;
    for (int i = 0; i < languages(dialog)->count(); ++i)
        items << languages(dialog)->itemText(i);
    return items.join(u'|');
}

}  // namespace

class DialogOptionTest : public QObject {
    Q_OBJECT
private:
    // Shown and laid out; every text must fit its widget.
    void verifyNothingClipped(CDialogOption& dialog)
    {
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
            if (!widget->isVisible()
                || !(qobject_cast<const QLabel*>(widget) || qobject_cast<const QAbstractButton*>(widget)
                     || qobject_cast<const QComboBox*>(widget) || qobject_cast<const QGroupBox*>(widget)))
                continue;
            QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->objectName()));
        }
        auto* categories = dialog.findChild<QListWidget*>(QStringLiteral("categories"));
        QVERIFY(categories->visualItemRect(categories->item(0)).right() < categories->viewport()->width());
        const QByteArray folder = qgetenv("ZELKO_SCREENSHOT_DIR");
        if (!folder.isEmpty())
            QVERIFY(dialog.grab().save(QString::fromUtf8(folder) + QStringLiteral("/option-%1.png")
                                                                     .arg(zelko::ui::currentLanguageId())));
    }

private slots:
    void initTestCase()
    {
        // The translation files copied beside this program by the build.
        qunsetenv("ZELKO_V24R02");
        QVERIFY(QFileInfo::exists(zelko::ui::installationFolder() + QStringLiteral("/language/ZELKO_MAT/Korean/Option.txt")));
    }

    void init() { zelko::ui::setCurrentLanguageId(0); }

    void opensOnTheCurrentLanguage()
    {
        for (int langId = 0; langId < 3; ++langId) {
            CDialogOption dialog(langId);
            QCOMPARE(languages(dialog)->currentIndex(), langId);
            QCOMPARE(dialog.languageId(), langId);
        }
        CDialogOption dialog(1);
        languages(dialog)->setCurrentIndex(2);
        QCOMPARE(dialog.languageId(), 2);
    }

    void unknownLanguageShowsNoSelectionAndStaysAsStored()
    {
        CDialogOption dialog(7);
        QCOMPARE(languages(dialog)->currentIndex(), -1);
        QCOMPARE(dialog.languageId(), 7);
        languages(dialog)->setCurrentIndex(1);
        QCOMPARE(dialog.languageId(), 1);
        CDialogOption negative(-1);
        QCOMPARE(languages(negative)->currentIndex(), -1);
    }

    void textsInEachLanguage_data()
    {
        QTest::addColumn<int>("langId");
        QTest::addColumn<QString>("texts");
        QTest::newRow("English") << 0 << QStringLiteral("Option...|Language|Language|Display language|OK|Cancel");
        QTest::newRow("Korean") << 1 << QStringLiteral("옵션...|언어|언어|표시 언어|확인|취소");
        QTest::newRow("Japanese") << 2 << QStringLiteral("オプション...|言語|言語|表示言語|OK|キャンセル");
    }

    void textsInEachLanguage()
    {
        QFETCH(int, langId);
        QFETCH(QString, texts);
        zelko::ui::setCurrentLanguageId(langId);
        CDialogOption dialog(langId);
        QCOMPARE(shownTexts(dialog), texts);
        // Each language's own name, whatever the language shown.
        QCOMPARE(comboItems(dialog), QStringLiteral("English|한국어|日本語"));
        QCOMPARE(languages(dialog)->currentIndex(), langId);
        auto* categories = dialog.findChild<QListWidget*>(QStringLiteral("categories"));
        QCOMPARE(categories->count(), 1);
        QCOMPARE(categories->currentRow(), 0);
        verifyNothingClipped(dialog);
    }

    void okAndCancel()
    {
        CDialogOption dialog(0);
        languages(dialog)->setCurrentIndex(1);
        buttonNamed(dialog, QStringLiteral("OK"))->click();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.languageId(), 1);
        CDialogOption cancelled(0);
        buttonNamed(cancelled, QStringLiteral("Cancel"))->click();
        QCOMPARE(cancelled.result(), int(QDialog::Rejected));
    }

    void optionsFileInTheUserConfigFolder()
    {
        QVERIFY(zelko::ui::optionsFilePath().endsWith(QStringLiteral("/PELD/ZELKO_MAT.ini")));
        QVERIFY(QDir::isAbsolutePath(zelko::ui::optionsFilePath()));
    }
};

QTEST_MAIN(DialogOptionTest)
#include "dialogoptiontest.moc"
