#pragma once
// The application's one window: the menus, the options, and the main form.

#include <QMainWindow>

#include "base/options.h"
#include "material/document.h"

class CMATView;
class QAction;

class CMainFrame : public QMainWindow {
    Q_OBJECT
public:
    explicit CMainFrame(QWidget* parent = nullptr);

    CMATView* view() const { return view_; }
    // Open from the command line or a drop: asks about unsaved changes first.
    bool openFromOutside(const QString& path);

    // The commands of the menus (tests call them without menus).
    void showOptions();
    void showAbout();
    void openManual();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    void updateCommands();

    zelko::Option options_;
    zelko::MaterialDocument document_;
    CMATView* view_ = nullptr;
    QAction* new_ = nullptr;
    QAction* open_ = nullptr;
    QAction* close_ = nullptr;
    QAction* save_ = nullptr;
    QAction* saveAs_ = nullptr;
};
