// The peak and steady-state screen on the measured Gleeble series: its grid holds
// the engine's values, its chart follows the chosen rows, and its CSV export
// writes the table whole or leaves what was there.

#include <QtTest>

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QXYSeries>

#include <cmath>

#include "base/tabletext.h"
#include "hot/hotcsv.h"
#include "hot/peaksteady.h"
#include "modalanswer.h"
#include "screenfiles.h"
#include "ui/chartview.h"
#include "ui/hotmicrosdlg.h"
#include "ui/uisettings.h"

using namespace zelko;
using zelko::test::answerMessage;
using zelko::test::canCreateIn;
using zelko::test::fileBytes;
using zelko::test::filesIn;

using zelko::test::kGleeble;
using zelko::test::measuredDataSet;

namespace {


// The series' names and point counts, in the order drawn.
QStringList seriesList(const zelko::ui::ChartView& chart)
{
    QStringList list;
    for (int i = 0; i < chart.seriesCount(); ++i)
        list << chart.seriesData(i).name + QLatin1Char('/') + QString::number(chart.seriesData(i).points.size());
    return list;
}

void selectRows(QTableWidget* table, std::initializer_list<int> rows)
{
    table->clearSelection();
    for (const int row : rows)
        table->selectionModel()->select(table->model()->index(row, 0),
                                        QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

}  // namespace

class HotMicrosScreenTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        dataSet_ = measuredDataSet();
        QCOMPARE(dataSet_.temperatures.size(), std::size_t{5});
        QCOMPARE(dataSet_.strainRates.size(), std::size_t{6});
        QVERIFY(folder_.isValid());
    }

    void gridHoldsTheEngineValuesOfEveryCell()
    {
        CDIALOG_HOT_MICROS dialog(dataSet_);
        QTableWidget* table = dialog.table();
        QCOMPARE(table->rowCount(), 30);
        QCOMPARE(table->columnCount(), 8);
        QCOMPARE(table->horizontalHeaderItem(3)->text(), QStringLiteral("Peak stress (MPa)"));
        const auto engine = peakSteadyModel(dataSet_);
        const TextTable rows = peakSteadyRows(*engine);
        for (int row = 0; row < 30; ++row) {
            const auto [t, r] = dialog.cellOfRow(row);
            QCOMPARE(table->item(row, 0)->text().toDouble(), dataSet_.temperatures[t]);
            QCOMPARE(table->item(row, 1)->text().toDouble(), dataSet_.strainRates[r]);
            for (int column = 0; column < 8; ++column)
                QCOMPARE(table->item(row, column)->text(),
                         QString::fromStdU16String(rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]));
            const MicrosCell& cell = engine->cells[t][r];
            QCOMPARE(dialog.model().cells[t][r].status, cell.status);
            if (cell.status == MicrosStatus::Found)
                QCOMPARE(table->item(row, 3)->text().toDouble(), std::round(cell.peakStress * 100.0) / 100.0);
        }
        // The slowest test at the lowest temperature softens to a steady state;
        // the fastest hardens to the end and shows no values.
        QCOMPARE(table->item(0, 7)->text(), QStringLiteral("ok"));
        QCOMPARE(table->item(5, 7)->text(), QStringLiteral("hardening only"));
        QCOMPARE(table->item(5, 3)->text(), QString());
    }

    void chosenRowsAreDrawnWithTheirPoints()
    {
        CDIALOG_HOT_MICROS dialog(dataSet_);
        zelko::ui::ChartView* chart = dialog.chart();
        // The first row is chosen on opening: its curve, the peak, the steady point and level.
        const QString first = QStringLiteral("1050 °C, 0.001 /s");
        QCOMPARE(seriesList(*chart), QStringList({first + "/71", first + "/1", first + "/1", first + "/2"}));
        const MicrosCell& cell = dialog.model().cells[0][0];
        QCOMPARE(chart->seriesData(1).points.front(), QPointF(cell.peakStrain, cell.peakStress));
        QCOMPARE(chart->seriesData(2).points.front(), QPointF(cell.steadyStrain, cell.steadyStress));
        QCOMPARE(chart->seriesData(3).points.back(), QPointF(0.7, cell.steadyStress));
        QCOMPARE(chart->seriesData(0).points.at(18), QPointF(0.18, dataSet_.curve(0, 0)[18].stress));
        QVERIFY(chart->drawnSeries(1)->markerSize() > chart->drawnSeries(0)->markerSize());

        // A curve that only hardens has no points to mark; one still softening its peak alone.
        selectRows(dialog.table(), {5, 0});
        const QString fast = QStringLiteral("1050 °C, 5 /s");
        QCOMPARE(seriesList(*chart), QStringList({first + "/71", first + "/1", first + "/1", first + "/2", fast + "/71"}));
        std::optional<int> softening;
        for (int row = 0; row < 30 && !softening; ++row) {
            const auto [t, r] = dialog.cellOfRow(row);
            if (dialog.model().cells[t][r].status == MicrosStatus::StillSoftening)
                softening = row;
        }
        QVERIFY(softening);
        selectRows(dialog.table(), {*softening});
        QCOMPARE(chart->seriesCount(), 2);
        QCOMPARE(chart->seriesData(1).points.size(), qsizetype{1});
        dialog.table()->clearSelection();
        QCOMPARE(chart->seriesCount(), 0);
    }

    void peakStressAgainstRateIsTheSecondView()
    {
        CDIALOG_HOT_MICROS dialog(dataSet_);
        dialog.viewChoice()->setCurrentIndex(CDIALOG_HOT_MICROS::PeakAgainstRate);
        zelko::ui::ChartView* chart = dialog.chart();
        QVERIFY(chart->logarithmicX());
        QCOMPARE(chart->seriesCount(), 5);
        for (int t = 0; t < 5; ++t) {
            const auto& series = chart->seriesData(t);
            QCOMPARE(series.name, QString::number(dataSet_.temperatures[static_cast<std::size_t>(t)]) + " °C");
            int peaks = 0;
            for (const MicrosCell& cell : dialog.model().cells[static_cast<std::size_t>(t)])
                peaks += std::isfinite(cell.peakStress) ? 1 : 0;
            QCOMPARE(series.points.size(), qsizetype{peaks});
            QVERIFY(peaks >= 2);
            QCOMPARE(series.points.front(), QPointF(0.001, dialog.model().cells[static_cast<std::size_t>(t)][0].peakStress));
        }
        // Choosing rows does not change this view.
        selectRows(dialog.table(), {1, 2});
        QCOMPARE(chart->seriesCount(), 5);
        dialog.viewChoice()->setCurrentIndex(CDIALOG_HOT_MICROS::FlowCurves);
        QVERIFY(!chart->logarithmicX());
        // 0.01 /s has its peak and steady state, 0.1 /s hardens to the end.
        const QString slow = QStringLiteral("1050 °C, 0.01 /s"), fast = QStringLiteral("1050 °C, 0.1 /s");
        QCOMPARE(seriesList(*chart), QStringList({slow + "/71", slow + "/1", slow + "/1", slow + "/2", fast + "/71"}));
    }

    void csvHoldsHeaderAndALinePerCell()
    {
        CDIALOG_HOT_MICROS dialog(dataSet_);
        const QString path = folder_.path() + "/peaks.csv";
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(5000, 'x'));
        old.close();
        QVERIFY(dialog.saveCsv(path));
        const std::string bytes = fileBytes(path);
        QVERIFY(bytes.starts_with("\xff\xfe"));
        QCOMPARE(bytes, listExportFile(peakSteadyHeaders(), peakSteadyRows(dialog.model())));
        const QString text = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.data() + 2),
                                                static_cast<qsizetype>((bytes.size() - 2) / 2));
        const QStringList lines = text.split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 32);  // header, 30 cells, nothing after the last line end
        QCOMPARE(lines.front(), QStringLiteral("Temperature, Strain rate, Peak strain, Peak stress (MPa), Steady stress "
                                               "(MPa), Half-softening strain, Steady strain, Status, "));
        QVERIFY2(lines.at(1).startsWith(QStringLiteral("1050, 0.001, ")), qPrintable(lines.at(1)));
        QVERIFY2(lines.at(6).endsWith(QStringLiteral(", , , , , hardening only, ")), qPrintable(lines.at(6)));
        QCOMPARE(lines.back(), QString());
    }

    void failedExportSaysSoAndKeepsWhatWasThere()
    {
        CDIALOG_HOT_MICROS dialog(dataSet_);
        // A folder this process cannot write: read-only, or /sys when running as root.
        QString locked = folder_.path() + "/locked";
        QDir().mkpath(locked);
        const QString old = locked + "/peaks.csv";
        QFile file(old);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("old export");
        file.close();
        QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
        QString target = old;
        if (canCreateIn(locked)) {
            locked = QStringLiteral("/sys");
            target = locked + "/peaks.csv";
            QVERIFY(!canCreateIn(locked));
        }
        const QStringList before = filesIn(locked);
        QString message;
        answerMessage(&message);
        QVERIFY(!dialog.saveCsv(target));
        QVERIFY2(message.startsWith(QStringLiteral("The file could not be saved.")), qPrintable(message));
        QVERIFY(message.contains(QDir::toNativeSeparators(target)));
        QCOMPARE(filesIn(locked), before);
        QCOMPARE(fileBytes(old), std::string("old export"));
        QFile::setPermissions(locked == "/sys" ? folder_.path() + "/locked" : locked,
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void screenInKoreanExportsWhatItShows()
    {
        zelko::ui::setCurrentLanguageId(1);
        CDIALOG_HOT_MICROS dialog(dataSet_);
        zelko::ui::setCurrentLanguageId(0);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("최대 응력 및 정상 상태"));
        // Every column and every status shown has its entry.
        for (int column = 0; column < dialog.table()->columnCount(); ++column) {
            const QString header = dialog.table()->horizontalHeaderItem(column)->text();
            QVERIFY2(header != QString::fromLatin1(kPeakSteadyColumns[static_cast<std::size_t>(column)].data()),
                     qPrintable(header));
        }
        for (int row = 0; row < dialog.table()->rowCount(); ++row) {
            const auto [t, r] = dialog.cellOfRow(row);
            const std::string_view english = microsStatusText(dialog.model().cells[t][r].status);
            QVERIFY(dialog.table()->item(row, 7)->text() != QString::fromLatin1(english.data(), english.size()));
        }
        QCOMPARE(dialog.table()->item(0, 7)->text(), QStringLiteral("정상"));
        QCOMPARE(dialog.viewChoice()->itemText(1), QStringLiteral("변형률 속도에 따른 최대 응력"));
        QCOMPARE(dialog.chart()->xTitle(), QStringLiteral("변형률"));
        const QString path = folder_.path() + "/korean.csv";
        QVERIFY(dialog.saveCsv(path));
        const std::string bytes = fileBytes(path);
        const QString text = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.data() + 2),
                                                static_cast<qsizetype>((bytes.size() - 2) / 2));
        QVERIFY2(text.startsWith(QStringLiteral("온도, 변형률 속도, 최대 응력 변형률, ")), qPrintable(text.left(80)));
        QVERIFY(text.contains(QStringLiteral(", 경화만 있음, \r\n")));
    }

private:
    PLASTIC_HOT dataSet_;
    QTemporaryDir folder_;
};

QTEST_MAIN(HotMicrosScreenTest)
#include "hotmicrostest.moc"
