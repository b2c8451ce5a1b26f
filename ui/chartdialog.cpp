#include "ui/chartdialog.h"

#include <QActionGroup>
#include <QBuffer>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QImageWriter>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <filesystem>

#include "base/fileio.h"
#include "base/tabletext.h"
#include "ui/chartstyles.h"
#include "ui/gifwriter.h"
#include "ui/listctrlext.h"

namespace zelko::ui {

namespace {

const QStringList kImageFilters = {QStringLiteral("PNG Files(*.png)"), QStringLiteral("GIF Files(*.gif)"),
                                   QStringLiteral("JPG Files(*.jpg)"), QStringLiteral("Bitmap Files(*.bmp)"),
                                   QStringLiteral("All files (*.*)")};
const QString kImageSuffix = QStringLiteral("png");
const QString kImageName = QStringLiteral("image");
const QString kRawDataName = QStringLiteral("raw data");
const QString kTecplotFilter = QStringLiteral("Tecplot file(*.dat)");
const QString kCsvFilter = QStringLiteral("csv file(*.csv)");
constexpr int kJpegQuality = 90;

std::filesystem::path toPath(const QString& path) { return std::filesystem::path(path.toStdU16String()); }

// The file's bytes in the format its extension names.
bool encodeImage(const QImage& image, const QString& path, std::string& bytes, QString& error)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("gif"))
        return encodeGif(image, bytes, error);
    QByteArray format = "png";
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        format = "jpg";
    else if (suffix == QLatin1String("bmp"))
        format = "bmp";
    QByteArray encoded;
    QBuffer buffer(&encoded);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (format == "jpg")
        writer.setQuality(kJpegQuality);
    if (!writer.write(image)) {
        error = writer.errorString();
        return false;
    }
    bytes.assign(encoded.constData(), static_cast<std::size_t>(encoded.size()));
    return true;
}

// The extension a filter such as "GIF Files(*.gif)" stands for; none for "*.*".
QString filterSuffix(const QString& filter)
{
    static const QRegularExpression pattern(QStringLiteral("\\*\\.(\\w+)"));
    const auto match = pattern.match(filter);
    return match.hasMatch() ? match.captured(1) : QString();
}

}  // namespace

CChartDialog::CChartDialog(QWidget* parent)
    : QDialog(parent),
      appearances_(splitStyleNames(QString::fromLatin1(kAppearanceList))),
      palettes_(splitStyleNames(QString::fromLatin1(kPaletteList))),
      randomColours_(randomColourTable())
{
    setObjectName(QStringLiteral("CChartDialog"));
    setWindowTitle(QStringLiteral("Graph"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    chart_ = new ChartView(this);
    chart_->setFrameShape(QFrame::NoFrame);
    chart_->setMinimumSize(480, 360);
    chart_->setExtraColours(randomColours_);

    menuBar_ = new QMenuBar(this);
    buildMenu();
    body_ = new QHBoxLayout;
    body_->addWidget(chart_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setMenuBar(menuBar_);
    layout->addLayout(body_);
    resize(800, 600);

    translateWindow(this, translationSection());
    chart_->resetZoomAction()->setText(translateText(chart_->resetZoomAction()->text()));
}

void CChartDialog::buildMenu()
{
    const auto named = [](QAction* action, const char* name) {
        action->setObjectName(QString::fromLatin1(name));
        return action;
    };
    QMenu* file = menuBar_->addMenu(QStringLiteral("&File"));
    QMenu* exports = file->addMenu(QStringLiteral("Export"));
    connect(named(exports->addAction(QStringLiteral("Image")), "exportImage"), &QAction::triggered, this,
            &CChartDialog::exportImage);
    connect(named(exports->addAction(QStringLiteral("Raw data (Tecplot)")), "exportTecplot"), &QAction::triggered,
            this, &CChartDialog::exportTecplot);
    connect(named(exports->addAction(QStringLiteral("Raw data (csv)")), "exportCsv"), &QAction::triggered, this,
            &CChartDialog::exportCsv);
    file->addSeparator();
    connect(named(file->addAction(QStringLiteral("E&xit")), "exit"), &QAction::triggered, this, &QDialog::reject);

    // The gallery items show the style names themselves; they are not translated.
    const auto gallery = [this](QMenu* menu, const QStringList& names, const QString& prefix,
                                bool (CChartDialog::*apply)(const QString&)) {
        auto* group = new QActionGroup(this);
        for (const QString& name : names) {
            QAction* item = menu->addAction(name);
            item->setObjectName(prefix + name);
            item->setData(name);
            item->setCheckable(true);
            group->addAction(item);
            connect(item, &QAction::triggered, this, [this, apply, name] { (this->*apply)(name); });
        }
        return group;
    };
    QMenu* appearance = menuBar_->addMenu(QStringLiteral("&Appearance"));
    appearanceGroup_ = gallery(appearance, appearances_, QStringLiteral("appearance:"), &CChartDialog::applyAppearance);
    QMenu* palette = menuBar_->addMenu(QStringLiteral("&Palette"));
    paletteGroup_ = gallery(palette, palettes_, QStringLiteral("palette:"), &CChartDialog::applyPalette);

    QMenu* advanced = menuBar_->addMenu(QStringLiteral("&Advanced"));
    legendAction_ = named(advanced->addAction(QStringLiteral("Show &Legend")), "showLegend");
    legendAction_->setCheckable(true);
    legendAction_->setChecked(chart_->legendVisible());
    connect(legendAction_, &QAction::toggled, this, &CChartDialog::showLegend);

    appearanceGroup_->actions().at(appearances_.indexOf(chart_->appearanceName()))->setChecked(true);
    paletteGroup_->actions().at(palettes_.indexOf(chart_->paletteName()))->setChecked(true);
}

bool CChartDialog::applyAppearance(const QString& name)
{
    if (!chart_->setAppearanceName(name))
        return false;
    appearanceGroup_->actions().at(appearances_.indexOf(name))->setChecked(true);
    return true;
}

bool CChartDialog::applyPalette(const QString& name)
{
    if (!chart_->setPaletteName(name))
        return false;
    paletteGroup_->actions().at(palettes_.indexOf(name))->setChecked(true);
    return true;
}

void CChartDialog::showLegend(bool visible)
{
    chart_->setLegendVisible(visible);
    legendAction_->setChecked(visible);
}

QString CChartDialog::askSavePath(const QString& name, const QStringList& filters, const QString& suffix)
{
    QFileDialog dialog(this);
    dialog.setObjectName(QStringLiteral("saveDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile(name);
    if (!suffix.isEmpty()) {
        // A name typed without extension takes the chosen type's.
        connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog, suffix](const QString& filter) {
            const QString own = filterSuffix(filter);
            dialog.setDefaultSuffix(own.isEmpty() ? suffix : own);
        });
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

void CChartDialog::exportImage()
{
    const QString path = askSavePath(kImageName, kImageFilters, kImageSuffix);
    if (!path.isEmpty())
        saveImage(path);
}

bool CChartDialog::saveImage(const QString& path)
{
    const QImage image = chart_->grabImage(chart_->viewport()->size());
    std::string bytes;
    QString reason;
    std::string saveError;
    bool saved = encodeImage(image, path, bytes, reason);
    if (saved && !saveFileAtomically(toPath(path), bytes, saveError)) {
        saved = false;
        reason = QString::fromStdString(saveError);
    }
    if (!saved)
        QMessageBox::warning(this, windowTitle(),
                             translateText(QStringLiteral("The image could not be saved.")) + QLatin1Char('\n') +
                                 QDir::toNativeSeparators(path) + QLatin1Char('\n') + reason);
    return saved;
}

void CChartDialog::exportTecplot()
{
    // The Tecplot export writes nothing, whatever is chosen.
    askSavePath(kRawDataName, {kTecplotFilter}, QString());
}

void CChartDialog::exportCsv()
{
    const QString path = askSavePath(kRawDataName, {kCsvFilter}, QString());
    if (!path.isEmpty())
        saveCsv(path);
}

bool CChartDialog::saveCsv(const QString& path)
{
    if (dataList_ == nullptr)
        return false;
    std::vector<std::u16string> headers;
    const QAbstractItemModel* model = dataList_->model();
    for (int column = 0; column < dataList_->columnCount(); ++column)
        headers.push_back(model->headerData(column, Qt::Horizontal).toString().toStdU16String());
    TextTable rows;
    for (int row = 0; row < dataList_->rowCount(); ++row) {
        rows.emplace_back();
        for (int column = 0; column < dataList_->columnCount(); ++column)
            rows.back().push_back(dataList_->cellText(row, column).toStdU16String());
    }
    std::string error;
    return saveFileAtomically(toPath(path), listExportFile(headers, rows), error);
}

}  // namespace zelko::ui
