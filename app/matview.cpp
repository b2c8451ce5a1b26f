#include "app/matview.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "hot/plastic_hot.h"
#include "material/libraryexport.h"
#include "material/modelregistry.h"
#include "models/roomori.h"
#include "ui/chemicalcompositiondlg.h"
#include "ui/elasticdlg.h"
#include "ui/heatdlg.h"
#include "ui/hotcompdlg.h"
#include "ui/listdatadlg.h"
#include "ui/plasticroomdlg.h"
#include "ui/screentext.h"

using namespace zelko;

namespace {

// Control ids as object names, so tests and translations find the controls.
template <class Widget>
Widget* named(Widget* widget, int id)
{
    widget->setObjectName(QString::number(id));
    return widget;
}

QGroupBox* group(const QString& label, int id, QWidget* parent, std::initializer_list<QWidget*> children)
{
    auto* box = named(new QGroupBox(label, parent), id);
    auto* layout = new QHBoxLayout(box);
    for (QWidget* child : children)
        layout->addWidget(child);
    return box;
}

std::filesystem::path toPath(const QString& path) { return std::filesystem::path(path.toStdU16String()); }

const QString kCaption = QStringLiteral("ZELKO_MAT");

// The file a command writes: the typed name's title with the command's extension, whatever was typed.
QString withExtension(const QString& typed, const QString& extension)
{
    const QFileInfo file(typed);
    return file.absolutePath() + QLatin1Char('/') + file.completeBaseName() + extension;
}

// A save dialog; empty when cancelled.
QString askSavePath(QWidget* parent, const QString& caption, const QString& start, const QString& filter,
                    const QString& suffix)
{
    QFileDialog dialog(parent, caption, start, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

const QString kMaterialFilter = QStringLiteral("ZELKO /MAT File(*.zmat)");

}  // namespace

CMATView::CMATView(MaterialDocument& document, QWidget* parent) : QWidget(parent), document_(document)
{
    setObjectName(QStringLiteral("CMATView"));
    title_ = named(new QLineEdit(this), 1006);
    title_->setMinimumWidth(280);
    composition_button_ = named(new QPushButton(QStringLiteral("Chemical composition"), this), 1005);
    elastic_ = named(new QPushButton(QStringLiteral("Elastic"), this), 1000);
    room_ = named(new QRadioButton(QStringLiteral("Room temperature"), this), 1003);
    hot_ = named(new QRadioButton(QStringLiteral("Hot temperature"), this), 1004);
    plastic_ = named(new QPushButton(QStringLiteral("Plastic"), this), 1001);
    thermal_ = named(new QPushButton(QStringLiteral("Thermal"), this), 1002);
    export_ = named(new QPushButton(QStringLiteral("Export"), this), 1046);
    auto* kinds = new QButtonGroup(this);
    kinds->addButton(room_, 0);
    kinds->addButton(hot_, 1);
    room_->setChecked(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group(QStringLiteral("Material ID"), 2001, this, {title_}));
    layout->addWidget(group(QStringLiteral("Chemical composition"), 2002, this, {composition_button_}));
    layout->addWidget(group(QStringLiteral("Elastic properties"), 2003, this, {elastic_}));
    layout->addWidget(group(QStringLiteral("Plastic properties"), 2004, this, {room_, hot_, plastic_}));
    layout->addWidget(group(QStringLiteral("Thermal properties"), 2005, this, {thermal_}));
    layout->addWidget(export_);
    layout->addStretch();

    connect(title_, &QLineEdit::textEdited, this, [this] { takeTitle(); });
    connect(kinds, &QButtonGroup::idClicked, this, [this](int id) { plasticKind_ = id; });
    connect(composition_button_, &QPushButton::clicked, this, &CMATView::editComposition);
    connect(elastic_, &QPushButton::clicked, this, &CMATView::editElastic);
    connect(plastic_, &QPushButton::clicked, this, &CMATView::editPlastic);
    connect(thermal_, &QPushButton::clicked, this, &CMATView::editThermal);
    connect(export_, &QPushButton::clicked, this, &CMATView::chooseAndExport);
    enableControls(false, false);
}

void CMATView::enableControls(bool open, bool composition)
{
    for (QWidget* control : std::initializer_list<QWidget*>{elastic_, plastic_, thermal_, title_, room_, hot_, export_})
        control->setEnabled(open);
    composition_button_->setEnabled(open && composition);
}

void CMATView::takeTitle()
{
    // A title read from a file keeps its line end; the field shows it without, and
    // an unchanged field leaves the title as read.
    if (title_->text() == shownTitle(document_.material().title))
        return;
    document_.setTitle(titleFromViewText(title_->text().toStdU16String()));
    emit materialStateChanged();
}

QString CMATView::shownTitle(const std::u16string& title)
{
    QString shown = QString::fromStdU16String(title);
    if (shown.endsWith(QLatin1Char('\n')))
        shown.chop(1);
    return shown;
}

void CMATView::showMaterial()
{
    title_->setText(shownTitle(document_.material().title));
    (plasticKind_ == 1 ? hot_ : room_)->setChecked(true);
}

void CMATView::newMaterial()
{
    // The material is not replaced: New only unlocks the form (without the composition).
    materialOpen_ = true;
    enableControls(true, false);
    emit materialStateChanged();
}

bool CMATView::openFile(const QString& path)
{
    const QFileInfo file(path);
    const QString extension = file.suffix();
    if (extension != QLatin1String("zmat") && extension != QLatin1String("z3dlib")) {
        QMessageBox::warning(this, kCaption, QStringLiteral("%1 is neither a material (.zmat) nor a library (.z3dlib).")
                                                 .arg(QDir::toNativeSeparators(path)));
        return false;
    }
    if (extension == QLatin1String("z3dlib")) {
        // A library file is opened but not read: its reader is inert. The title takes its name.
        title_->setText(file.completeBaseName());
        takeTitle();
    } else {
        std::string error;
        if (!document_.open(toPath(path), error)) {
            QMessageBox::warning(this, kCaption,
                                 QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), ui::fromUtf8(error)));
            return false;
        }
        const auto& model = document_.material().activeModel;
        plasticKind_ = model && model->modelKind == HotModel ? 1 : 0;
        showMaterial();
        for (const std::string& warning : document_.warnings())
            QMessageBox::warning(this, kCaption,
                                 QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), ui::fromUtf8(warning)));
    }
    lastFolder_ = file.absolutePath();
    materialOpen_ = true;
    enableControls(true, true);
    emit materialStateChanged();
    return true;
}

bool CMATView::saveFile(const QString& path)
{
    const QString target = withExtension(path, QStringLiteral(".zmat"));
    takeTitle();
    std::string error;
    if (!document_.save(toPath(target), error)) {
        QMessageBox::warning(this, kCaption,
                             QStringLiteral("%1 was not saved: %2").arg(QDir::toNativeSeparators(target), ui::fromUtf8(error)));
        return false;
    }
    lastFolder_ = QFileInfo(target).absolutePath();
    emit materialStateChanged();
    return true;
}

void CMATView::closeMaterial()
{
    materialOpen_ = false;
    enableControls(false, false);
    title_->clear();
    document_.close();
    plasticKind_ = 0;
    showMaterial();
    emit materialStateChanged();
}

bool CMATView::maySetMaterialAside()
{
    if (!materialOpen_ || !document_.modified())
        return true;
    const auto answer = QMessageBox::question(
        this, kCaption, QStringLiteral("The material has changes that are not saved. Save them first?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Cancel)
        return false;
    if (answer == QMessageBox::Discard)
        return true;
    const QString path = askSavePath(this, QStringLiteral("Save"), lastFolder_, kMaterialFilter, QStringLiteral("zmat"));
    return !path.isEmpty() && saveFile(path);
}

bool CMATView::exportLibrary(const QString& path)
{
    const QString target = withExtension(path, QStringLiteral(".z3dlib"));
    takeTitle();
    std::string error;
    bool wroteModelBlock = false;
    if (!document_.exportLibrary(toPath(target), wroteModelBlock, error)) {
        QMessageBox::warning(this, kCaption, QStringLiteral("%1 was not exported: %2")
                                                 .arg(QDir::toNativeSeparators(target), ui::fromUtf8(error)));
        return false;
    }
    if (!wroteModelBlock)
        QMessageBox::information(this, kCaption,
                                 ui::fromUtf8(missingModelBlockWarning(*document_.material().libraryModel())));
    return true;
}

void CMATView::chooseAndOpen()
{
    const QString path = QFileDialog::getOpenFileName(
        this, QStringLiteral("Open"), lastFolder_,
        QStringLiteral("ZELKO /MAT Files(*.zmat);;ZELKO Material Library Files(*.z3dlib)"));
    if (!path.isEmpty())
        openFile(path);
}

void CMATView::chooseAndSave()
{
    const QString path = askSavePath(this, QStringLiteral("Save As"), lastFolder_, kMaterialFilter, QStringLiteral("zmat"));
    if (!path.isEmpty())
        saveFile(path);
}

void CMATView::chooseAndExport()
{
    // The installation's sample library is proposed when the installation is known.
    const auto sample = proposedLibraryPath(document_.environment().installationFolder,
                                            QDir::separator().toLatin1());
    const QString proposed = sample ? QString::fromStdString(*sample) : lastFolder_;
    const QString path = askSavePath(this, QStringLiteral("To Library: Matrial"), proposed,
                                     QStringLiteral("Material Library Files(*.z3dlib)"), QStringLiteral("z3dlib"));
    if (!path.isEmpty())
        exportLibrary(path);
}

void CMATView::editElastic()
{
    takeTitle();
    CElasticDlg screen(*document_.material().elastic, composition_, this);
    if (screen.exec() != QDialog::Accepted)
        return;
    Project edited = document_.copy();
    applyElasticScreen(screen.values(), *edited.elastic);
    document_.commit(std::move(edited));
    emit materialStateChanged();
}

void CMATView::editThermal()
{
    takeTitle();
    const Project& material = document_.material();
    CHeatDlg screen(material.conductivity->points, material.heatCapacity->points, this);
    if (screen.exec() != QDialog::Accepted)
        return;
    Project edited = document_.copy();
    edited.conductivity->points = screen.conductivity();
    edited.heatCapacity->points = screen.heatCapacity();
    document_.commit(std::move(edited));
    emit materialStateChanged();
}

void CMATView::editComposition()
{
    takeTitle();
    CDlgChemicalComposition composition(composition_, this);
    if (composition.exec() != QDialog::Accepted)
        return;
    composition_ = composition.composition();
    // The estimate is offered on the modulus table; accepted, it becomes that table.
    CDlgListData list(0, document_.material().elastic->tables[0], composition_, this);
    list.runMethod(0);
    if (list.exec() != QDialog::Accepted)
        return;
    Project edited = document_.copy();
    edited.elastic->propertyType[0] = 2;
    edited.elastic->setTable(0, list.table());
    document_.commit(std::move(edited));
    emit materialStateChanged();
}

void CMATView::editPlastic()
{
    takeTitle();
    if (plasticKind_ != 0 && plasticKind_ != 1)
        return;
    std::shared_ptr<Plastic> model = document_.material().activeModel;
    if (!model && !(model = createRecordOfKind(plasticKind_ == 0 ? ColdModel : HotModel))) {
        QMessageBox::warning(this, kCaption, QStringLiteral("Failed to make a pointer!!!"));
        return;
    }
    const bool fits = plasticKind_ == 0 ? dynamic_cast<const RoomOri*>(model.get()) != nullptr
                                        : dynamic_cast<const PLASTIC_HOT*>(model.get()) != nullptr;
    if (!fits) {
        QMessageBox::warning(this, kCaption, QStringLiteral("Failed to cast a pointer!!!"));
        return;
    }
    // The screen works on the material with the record the button made.
    Project material = document_.copy();
    if (!material.activeModel)
        material.setModel(model);
    std::optional<Project> edited;
    if (plasticKind_ == 0) {
        CPlasticRoomDlg tensile(material, document_.environment(), this);
        if (tensile.exec() == QDialog::Accepted && tensile.materialChanged())
            edited = tensile.material();
    } else {
        CHotCompDlg hot(material, document_.environment(), this);
        if (hot.exec() == QDialog::Accepted)
            edited = hot.material();
    }
    if (edited) {
        document_.commit(std::move(*edited));
        emit materialStateChanged();
    }
}
