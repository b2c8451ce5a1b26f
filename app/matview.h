#pragma once
// The main form: one group per kind of data, each button opening its screen on
// a copy of the material; the document takes the accepted copy whole.

#include <QWidget>

#include <array>

#include "material/document.h"
#include "material/tselikov.h"
#include "ui/managertranslate.h"

class QButtonGroup;
class QLineEdit;
class QPushButton;
class QRadioButton;

class CMATView : public QWidget, public ManagerTranslate {
    Q_OBJECT
public:
    explicit CMATView(zelko::MaterialDocument& document, QWidget* parent = nullptr);

    bool materialOpen() const { return materialOpen_; }
    int plasticKind() const { return plasticKind_; }
    zelko::MaterialDocument& document() { return document_; }

    // The commands; each returns whether it did what it set out to do.
    void newMaterial();
    bool openFile(const QString& path);
    bool saveFile(const QString& path);
    void closeMaterial();
    bool exportLibrary(const QString& path);
    // Asks before unsaved changes are thrown away: true to go on.
    bool maySetMaterialAside();

    // The screens, on the current material (tests drive them through these).
    void editElastic();
    void editThermal();
    void editComposition();
    void editPlastic();

    // The file dialogs, then the commands.
    void chooseAndOpen();
    void chooseAndSave();
    void chooseAndExport();

signals:
    void materialStateChanged();

private:
    void enableControls(bool open, bool composition);
    void takeTitle();
    static QString shownTitle(const std::u16string& title);
    void showMaterial();

    zelko::MaterialDocument& document_;
    bool materialOpen_ = false;
    int plasticKind_ = 0;
    zelko::ChemicalComposition composition_;
    QLineEdit* title_ = nullptr;
    QPushButton* composition_button_ = nullptr;
    QPushButton* elastic_ = nullptr;
    QRadioButton* room_ = nullptr;
    QRadioButton* hot_ = nullptr;
    QPushButton* plastic_ = nullptr;
    QPushButton* thermal_ = nullptr;
    QPushButton* export_ = nullptr;
    QString lastFolder_;
};
