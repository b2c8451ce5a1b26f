#pragma once
// The plot control of the processing map: one gnuplot kept running behind it,
// fed commands on its standard input, draws the loaded script into a picture in
// the exchange folder at the control's size; the control shows that picture.
// Nothing here waits for gnuplot: its answer is read as it comes.

#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <filesystem>

#include "base/environment.h"

class QProcess;

class CStaticGNUPlot : public QWidget {
    Q_OBJECT
public:
    // gnuplot is the environment's program; its picture goes to the exchange folder.
    explicit CStaticGNUPlot(const zelko::Environment& environment, QWidget* parent = nullptr);
    ~CStaticGNUPlot() override;

    // Drops the picture and the script; gnuplot keeps running.
    void clear();
    // Draws the script now and again whenever the control changes size.
    void load(const std::filesystem::path& script);

    // A gnuplot that has not drawn within this time is killed (the picture
    // stays empty); the next draw starts another.
    void setTimeLimit(std::chrono::milliseconds limit) { timeLimit_ = limit; }

    const QPixmap& picture() const { return picture_; }
    // A drawing asked of gnuplot and not answered yet.
    bool drawing() const { return drawing_; }

signals:
    // Drawn, cleared, or given up.
    void pictureChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QSize sizeHint() const override;

private:
    void draw();
    bool startProgram();
    void readAnswer();
    void dropPicture();
    void giveUp();
    void dropProgram();
    QSize pixelSize() const;

    zelko::Environment environment_;
    std::filesystem::path picturePath_;
    std::filesystem::path script_;
    std::chrono::milliseconds timeLimit_;
    QProcess* program_ = nullptr;
    QTimer resizeTimer_;
    QTimer limitTimer_;
    QByteArray answer_;
    QPixmap picture_;
    QSize drawingSize_;
    bool drawing_ = false;
    // The script or the size changed while gnuplot was drawing.
    bool drawAgain_ = false;
    int loads_ = 0;
    int drawingLoad_ = 0;
};
