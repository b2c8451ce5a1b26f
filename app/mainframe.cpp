#include "app/mainframe.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QUrl>
#include <QVBoxLayout>

#include "app/matview.h"
#include "ui/dialogoption.h"
#include "ui/uisettings.h"

CMainFrame::CMainFrame(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("CMainFrame"));
    // The title never shows the file's name.
    setWindowTitle(QStringLiteral("ZELKO_MAT"));
    // The language is known before any window exists; a bad options file means English.
    options_.load(std::filesystem::path(zelko::ui::optionsFilePath().toStdU16String()));
    zelko::ui::setCurrentLanguageId(options_.langId);
    view_ = new CMATView(document_, this);
    setCentralWidget(view_);
    buildMenus();
    statusBar();
    setAcceptDrops(true);
    connect(view_, &CMATView::materialStateChanged, this, &CMainFrame::updateCommands);
    updateCommands();
    // On the frame, so the menus are translated with the form; the title has no entry.
    view_->translateWindow(this, QStringLiteral("Main"));
}

void CMainFrame::buildMenus()
{
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    new_ = file->addAction(QStringLiteral("&New\tCtrl+N"), view_, &CMATView::newMaterial);
    new_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    open_ = file->addAction(QStringLiteral("&Open...\tCtrl+O"), view_, &CMATView::chooseAndOpen);
    open_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    close_ = file->addAction(QStringLiteral("&Close\tCtrl+W"), this, [this] {
        if (view_->maySetMaterialAside())
            view_->closeMaterial();
    });
    file->addSeparator();
    save_ = file->addAction(QStringLiteral("&Save\tCtrl+S"), view_, &CMATView::chooseAndSave);
    save_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    saveAs_ = file->addAction(QStringLiteral("Save &As..."), view_, &CMATView::chooseAndSave);
    file->addSeparator();
    file->addAction(QStringLiteral("E&xit"), this, &QWidget::close);

    QMenu* tools = menuBar()->addMenu(QStringLiteral("&Tools"));
    tools->addAction(QStringLiteral("&Option"), this, &CMainFrame::showOptions);
    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("Online &Manual"), this, &CMainFrame::openManual);
    help->addSeparator();
    help->addAction(QStringLiteral("&About MAT..."), this, &CMainFrame::showAbout);
    for (QAction* action : {new_, open_, close_, save_, saveAs_})
        action->setShortcutVisibleInContextMenu(false);
}

void CMainFrame::updateCommands()
{
    const bool open = view_->materialOpen();
    new_->setEnabled(!open);
    open_->setEnabled(!open);
    for (QAction* action : {close_, save_, saveAs_})
        action->setEnabled(open);
}

bool CMainFrame::openFromOutside(const QString& path)
{
    if (view_->materialOpen()) {
        if (!view_->maySetMaterialAside())
            return false;
        view_->closeMaterial();
    }
    return view_->openFile(path);
}

void CMainFrame::showOptions()
{
    const int oldLangId = options_.langId;
    CDialogOption dialog(options_.langId, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    options_.langId = dialog.languageId();
    // Not written (a read-only settings folder): the language still applies for this run.
    (void)options_.save(std::filesystem::path(zelko::ui::optionsFilePath().toStdU16String()));
    zelko::ui::setCurrentLanguageId(options_.langId);
    zelko::ui::retranslateAfterLanguageChange(*view_, this, QStringLiteral("Main"), oldLangId);
}

void CMainFrame::openManual()
{
    // The manual is shipped beside the program (docs/), in the build tree and installed.
    const QString folder = zelko::ui::installationFolder();
    for (const QString& candidate : {folder + QStringLiteral("/docs/manual.html"), folder + QStringLiteral("/docs/manual.md")})
        if (QFileInfo::exists(candidate)) {
            QDesktopServices::openUrl(QUrl::fromLocalFile(candidate));
            return;
        }
    QMessageBox::information(this, QStringLiteral("ZELKO_MAT"),
                             QStringLiteral("The manual was not found beside the program (%1).")
                                 .arg(QDir::toNativeSeparators(folder + QStringLiteral("/docs"))));
}

void CMainFrame::showAbout()
{
    QDialog about(this);
    about.setObjectName(QStringLiteral("About"));
    about.setWindowTitle(QStringLiteral("About"));
    auto* icon = new QLabel(&about);
    icon->setPixmap(windowIcon().pixmap(48, 48));
    auto* name = new QLabel(QStringLiteral("ZELKO MAT V24R02"), &about);
    auto* website = new QLabel(QStringLiteral("<a href=\"manual\">Website</a>"), &about);
    connect(website, &QLabel::linkActivated, this, &CMainFrame::openManual);
    auto* ok = new QDialogButtonBox(QDialogButtonBox::Ok, &about);
    connect(ok, &QDialogButtonBox::accepted, &about, &QDialog::accept);
    auto* layout = new QVBoxLayout(&about);
    layout->addWidget(icon);
    layout->addWidget(name);
    layout->addWidget(website);
    layout->addWidget(ok);
    about.exec();
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    if (view_->maySetMaterialAside())
        event->accept();
    else
        event->ignore();
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void CMainFrame::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile())
        return;
    event->acceptProposedAction();
    openFromOutside(urls.first().toLocalFile());
}
