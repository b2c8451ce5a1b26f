// The hot compression test screen driven as a user drives it, on the measured
// Gleeble series: its data set and fits are checked against the engine fed the
// same file directly, and against the material and library entry they become.

#include <QtTest>

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <cmath>

#include "app/mainframe.h"
#include "app/matview.h"
#include "base/fileio.h"
#include "base/textfile.h"
#include "hot/hotcsv.h"
#include "hot/hotmodels.h"
#include "material/document.h"
#include "material/hotchain.h"
#include "hotmaterial.h"
#include "modalanswer.h"
#include "screenfiles.h"
#include "ui/hotcompdlg.h"

using namespace zelko;
using zelko::test::fileBytes;
using zelko::test::kGleeble;
using zelko::test::measuredDataSet;
using zelko::test::pressOk;
using zelko::test::testEnvironment;
using zelko::test::whenModalOpens;

namespace {

constexpr int kHenselSpittelType = 1;

QStringList listTexts(QDialog& dialog, const char* name)
{
    QStringList texts;
    auto* list = dialog.findChild<QListWidget*>(QString::fromLatin1(name));
    for (int row = 0; row < list->count(); ++row)
        texts << list->item(row)->text();
    return texts;
}

// The next message box's text; the box is closed.
void readNextMessage(QString& text, QWidget* notThis)
{
    text.clear();
    whenModalOpens(
        [&text](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            text = box ? box->text() : QStringLiteral("(not a message box)");
            modal->close();
        },
        notThis);
}

void addValue(CHotCompDlg& dialog, HotGroup group, const char* field, const QString& value)
{
    dialog.findChild<QLineEdit*>(QString::fromLatin1(field))->setText(value);
    dialog.addGroupValue(group);
}

}  // namespace

class HotCompScreenTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(exchange_.isValid());
        qputenv("ZELKO_TEMP", exchange_.path().toLocal8Bit());
    }
    void init() { QVERIFY(folder_.isValid()); }

    // A long CSV in, Hensel-Spittel fitted, the material saved and exported, through the screens alone.
    void fromMeasuredSeriesToLibraryEntry()
    {
        CMainFrame frame;
        CMATView* view = zelko::test::newHotMaterial(frame);
        QString report;
        whenModalOpens([&](QWidget* modal) {
            auto* hot = qobject_cast<CHotCompDlg*>(modal);
            QVERIFY(hot);
            QVERIFY(hot->importCsv(kGleeble));
            QCOMPARE(listTexts(*hot, "temperatures"),
                     (QStringList{"1050", "1100", "1150", "1200", "1250"}));
            QCOMPARE(listTexts(*hot, "strainRates").size(), 6);
            hot->findChild<QComboBox*>(QStringLiteral("type"))->setCurrentIndex(kHenselSpittelType);
            hot->fit();
            QTRY_VERIFY_WITH_TIMEOUT(!hot->fitRunning(), 30000);
            report = hot->findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText();
            pressOk(hot);
        });
        view->editPlastic();

        const HotCurvesFit expected =
            fitHotCurves(Project(), measuredDataSet(), HotModelId::Type17, HotFitOptions{});
        QVERIFY(expected.material);
        QCOMPARE(report.toStdString(), expected.fit.result.report);
        QCOMPARE(view->document().material().activeModel->modelNumber, 17);

        const QString saved = folder_.filePath(QStringLiteral("gleeble.zmat"));
        const QString library = folder_.filePath(QStringLiteral("gleeble.z3dlib"));
        QVERIFY(view->saveFile(saved));
        QVERIFY(view->exportLibrary(library));
        MaterialDocument reopened;
        std::string error;
        QVERIFY(reopened.open(std::filesystem::path(saved.toStdU16String()), error));
        const HotDataSet* stored = hotDataSetOf(reopened.material());
        QVERIFY(stored);
        // The file keeps every curve (its numbers rounded as the file writes them).
        const PLASTIC_HOT measured = measuredDataSet();
        QCOMPARE(stored->temperatures, measured.temperatures);
        QCOMPARE(stored->strainRates, measured.strainRates);
        QCOMPARE(stored->curves.size(), measured.curves.size());
        for (std::size_t t = 0; t < measured.curves.size(); ++t)
            for (std::size_t r = 0; r < measured.curves[t].size(); ++r)
                QCOMPARE(stored->curves[t][r].size(), measured.curves[t][r].size());
        QVERIFY(fileBytes(library).find("\r\n      17\r\n") != std::string::npos);
    }

    // One curve by the raw-text path: groups typed, a cell chosen, the text imported and shown again.
    void rawTextIntoOneCell()
    {
        CHotCompDlg dialog(Project(), testEnvironment());
        dialog.show();
        addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QStringLiteral("0.1"));
        addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QStringLiteral("0.01"));
        addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QStringLiteral("1"));
        addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QStringLiteral("1.0"));  // "%g" text listed
        QCOMPARE(listTexts(dialog, "strainRates"), (QStringList{"0.01", "0.1", "1"}));
        addValue(dialog, HotGroup::Temperature, "temperaturesValue", QStringLiteral("-20"));
        addValue(dialog, HotGroup::Temperature, "temperaturesValue", QStringLiteral("1100"));
        addValue(dialog, HotGroup::Strain, "strainsValue", QStringLiteral("0.1"));
        // Cells follow the lists as applied: an import before Apply groups is refused.
        QString said;
        readNextMessage(said, &dialog);
        dialog.importRawData();
        QTRY_VERIFY(said.startsWith(QStringLiteral("Apply the groups first")));
        dialog.applyGroups();

        dialog.findChild<QListWidget*>(QStringLiteral("strainRates"))->item(1)->setSelected(true);
        dialog.findChild<QListWidget*>(QStringLiteral("temperatures"))->item(1)->setSelected(true);
        dialog.findChild<QLineEdit*>(QStringLiteral("strainOffset"))->setText(QStringLiteral("0.002"));
        const QString text = QStringLiteral("0.001 50\n0.012 80\n0.2 120\n");
        dialog.findChild<QPlainTextEdit*>(QStringLiteral("rawText"))->setPlainText(text);
        dialog.importRawData();

        HotDataSet expected = dialog.dataSet();
        expected.curves[1][1].clear();
        CurveSelection cell{{1}, {1}};
        QVERIFY(importRawText(expected, u"0.001 50\r\n0.012 80\r\n0.2 120\r\n", cell, RawCurveLayout{}, 0.002));
        QCOMPARE(dialog.dataSet().curves[1][1], expected.curves[1][1]);
        QCOMPARE(dialog.dataSet().curves[1][1].size(), std::size_t{2});
        QVERIFY(std::filesystem::exists(testEnvironment().exchangeFolder / "tmp.txt"));

        dialog.findChild<QPlainTextEdit*>(QStringLiteral("rawText"))->clear();
        dialog.showCurve();
        QCOMPARE(dialog.findChild<QPlainTextEdit*>(QStringLiteral("rawText"))->toPlainText(),
                 QStringLiteral("    0.010000    80.000000 \n    0.198000    120.000000 \n"));
    }

    // The described refusals, and what a user meets beyond them; the data set stays as it was.
    void refusalsChangeNothing()
    {
        CHotCompDlg dialog(Project(), testEnvironment());
        dialog.show();
        QString said;
        readNextMessage(said, &dialog);
        addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QStringLiteral("0"));
        QTRY_COMPARE(said, QStringLiteral("Please enter a number greater than '0'."));
        QVERIFY(listTexts(dialog, "strainRates").isEmpty());

        for (int i = 0; i < 30; ++i)
            addValue(dialog, HotGroup::Temperature, "temperaturesValue", QString::number(900 + 10 * i));
        readNextMessage(said, &dialog);
        addValue(dialog, HotGroup::Temperature, "temperaturesValue", QStringLiteral("1300"));
        QTRY_COMPARE(said, QStringLiteral("The maximum number of temperature is 30."));
        QCOMPARE(listTexts(dialog, "temperatures").size(), 30);

        addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QStringLiteral("0.1"));
        readNextMessage(said, &dialog);
        dialog.applyGroups();
        QTRY_COMPARE(said, QStringLiteral("The strain-rate group need at least two number of items"));
        QVERIFY(dialog.dataSet().curves.empty());

        // Words in the CSV: the line is named, nothing is taken.
        const QString bad = folder_.filePath(QStringLiteral("bad.csv"));
        std::string error;
        QVERIFY(saveFileAtomically(bad.toStdString(), "temperature,strain_rate,strain,stress\n1000,0.1,0.1,lots\n",
                                   error));
        readNextMessage(said, &dialog);
        QVERIFY(!dialog.importCsv(bad));
        QTRY_VERIFY(said.contains(QStringLiteral("line 2")));
        QCOMPARE(listTexts(dialog, "temperatures").size(), 30);

        // Type 162 is refused as described.
        QVERIFY(dialog.importCsv(kGleeble));
        dialog.findChild<QComboBox*>(QStringLiteral("type"))->setCurrentIndex(3);
        readNextMessage(said, &dialog);
        dialog.fit();
        QTRY_COMPARE(said, QStringLiteral("162 model is not supported"));
        QVERIFY(!dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
    }

    // Pasted text a user should not paste, a value typed twice and a fit over one temperature:
    // no crash, no frozen window, and what was taken is what the reader could read.
    void awkwardInputEndsCalmly()
    {
        CHotCompDlg dialog(Project(), testEnvironment());
        dialog.show();
        for (const char* rate : {"0.1", "1", "0.1"})
            addValue(dialog, HotGroup::StrainRate, "strainRatesValue", QString::fromLatin1(rate));
        QCOMPARE(listTexts(dialog, "strainRates"), (QStringList{"0.1", "1"}));
        addValue(dialog, HotGroup::Temperature, "temperaturesValue", QStringLiteral("1000"));
        addValue(dialog, HotGroup::Strain, "strainsValue", QStringLiteral("0.2"));
        dialog.applyGroups();
        auto* rawText = dialog.findChild<QPlainTextEdit*>(QStringLiteral("rawText"));
        const auto importInto = [&](int rate, const QString& text) {
            auto* rates = dialog.findChild<QListWidget*>(QStringLiteral("strainRates"));
            rates->clearSelection();
            rates->item(rate)->setSelected(true);
            dialog.findChild<QListWidget*>(QStringLiteral("temperatures"))->item(0)->setSelected(true);
            rawText->setPlainText(text);
            dialog.importRawData();
            return dialog.dataSet().curves[0][static_cast<std::size_t>(rate)];
        };
        // A word reads as 0, as the exchange file's readers take it, and the screen says so.
        QString said;
        readNextMessage(said, &dialog);
        const HotCurve worded = importInto(0, QStringLiteral("0.1 100\n0.2 abc\n0.3 120\n"));
        QTRY_COMPARE(said, QStringLiteral("1 values of the text are not numbers; they were read as their leading "
                                          "number, or 0."));
        QCOMPARE(worded.size(), std::size_t{3});
        QCOMPARE(worded[1].stress, 0.0);
        // One point, and strains that fall, are taken as they are.
        QCOMPARE(importInto(0, QStringLiteral("0.25 110\n")).size(), std::size_t{1});
        const HotCurve falling = importInto(1, QStringLiteral("0.3 150\n0.2 140\n0.1 130\n"));
        QCOMPARE(falling.size(), std::size_t{3});
        QCOMPARE(falling.front().strain, 0.3);
        // A thousand columns on a line: lines are counted in pieces of at most 128 characters, a
        // record a piece, so the 3,893 characters give 31 records of the first 62 numbers.
        QString wide;
        for (int i = 0; i < 1000; ++i)
            wide += QString::number(i + 1) + QLatin1Char(' ');
        const HotCurve columns = importInto(1, wide + QStringLiteral("\n"));
        QCOMPARE(columns.size(), std::size_t{31});
        QCOMPARE(columns.back().stress, 62.0);

        // One temperature: the fit ends with a model and says what it cannot know; the window answers.
        importInto(1, QStringLiteral("0.1 130\n0.2 140\n0.3 150\n"));
        dialog.fit();
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.fitRunning(), 30000);
        const QString report = dialog.findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText();
        QVERIFY(dialog.material().activeModel);
        QVERIFY2(report.contains(QStringLiteral("\n note: one temperature: the data do not decide the law's temperature "
                                                "terms (m1, m8, m9)\n")),
                 qPrintable(report));
        QVERIFY(dialog.findChild<QPushButton*>(QStringLiteral("fit"))->isEnabled());
    }

    void anExchangeFolderThatCannotBeMade()
    {
        CHotCompDlg dialog(Project(), zelko::test::unreachableExchange(folder_.path()));
        dialog.show();
        QVERIFY(dialog.importCsv(kGleeble));
        const HotDataSet before = dialog.dataSet();
        dialog.findChild<QListWidget*>(QStringLiteral("strainRates"))->item(0)->setSelected(true);
        dialog.findChild<QListWidget*>(QStringLiteral("temperatures"))->item(0)->setSelected(true);
        dialog.findChild<QPlainTextEdit*>(QStringLiteral("rawText"))->setPlainText(QStringLiteral("0.1 10\n"));
        QString said;
        readNextMessage(said, &dialog);
        dialog.importRawData();
        QTRY_COMPARE(said, QStringLiteral("It did not create Directory(c:\\temp\\ZELKO)."));
        QCOMPARE(dialog.dataSet().curves, before.curves);
    }

    void aStoppedFitLeavesTheMaterialAsItWas()
    {
        // The largest grid the screen takes, so the fit outlasts the click on Stop.
        std::string csv = "temperature,strain_rate,strain,stress\n";
        for (int t = 0; t < 30; ++t)
            for (const double rate : {0.001, 0.003, 0.01, 0.03, 0.1, 0.3, 1.0, 3.0, 10.0})
                for (int i = 1; i <= 40; ++i) {
                    const double strain = 0.02 * i;
                    const double stress = 3000.0 * std::exp(-0.003 * (900 + 10 * t)) * std::pow(strain, 0.2)
                                          * std::pow(rate, 0.12) * std::exp(-0.5 * strain);
                    csv += formatText("%d,%g,%g,%g\n", 900 + 10 * t, rate, strain, stress);
                }
        const QString large = folder_.filePath(QStringLiteral("large.csv"));
        std::string error;
        QVERIFY(saveFileAtomically(large.toStdString(), csv, error));

        CHotCompDlg dialog(Project(), testEnvironment());
        dialog.show();
        QVERIFY(dialog.importCsv(large));
        dialog.findChild<QComboBox*>(QStringLiteral("type"))->setCurrentIndex(kHenselSpittelType);
        dialog.fit();
        QVERIFY(dialog.fitRunning());
        QVERIFY(!dialog.findChild<QPushButton*>(QStringLiteral("fit"))->isEnabled());
        dialog.findChild<QPushButton*>(QStringLiteral("stopFit"))->click();
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.fitRunning(), 5000);
        const QString report = dialog.findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText();
        QVERIFY2(report.contains(QStringLiteral("stopped")), qPrintable(report));
        QVERIFY(!dialog.material().activeModel);
        QVERIFY(!dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
        QVERIFY(dialog.findChild<QPushButton*>(QStringLiteral("fit"))->isEnabled());
    }

private:
    QTemporaryDir folder_;
    QTemporaryDir exchange_;
};

QTEST_MAIN(HotCompScreenTest)
#include "hotcomptest.moc"
