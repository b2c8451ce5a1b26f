#pragma once

#include <QMainWindow>

// The application's one window.
class CMainFrame : public QMainWindow {
    Q_OBJECT
public:
    explicit CMainFrame(QWidget* parent = nullptr);
};
