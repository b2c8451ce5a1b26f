#include "ui/staticgnuplot.h"

#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QResizeEvent>

#include <string>
#include <system_error>

#include "base/exchangefolder.h"
#include "base/process.h"
#include "hot/gnuplot.h"

#ifdef Q_OS_UNIX
#include <csignal>
#include <unistd.h>
#endif

namespace {

// Resizing sends a burst of events; one drawing at the size it settles on.
constexpr int kResizeSettleMs = 150;
// pngcairo refuses a picture this small, and nothing could be read on it.
constexpr int kSmallestSide = 32;
// What gnuplot prints when it has drawn; nothing else of it goes to standard output.
const QByteArray kDone = QByteArrayLiteral("DONE\n");

QByteArray quoted(const std::filesystem::path& path) { return QByteArray::fromStdString(zelko::gnuplotQuoted(path.string())); }

// gnuplot and whatever it started (a wrapper script's children) end together.
void killProgram(QProcess* program)
{
#ifdef Q_OS_UNIX
    if (program->processId() > 0)
        ::kill(-static_cast<pid_t>(program->processId()), SIGKILL);
#endif
    program->kill();
}

}  // namespace

CStaticGNUPlot::CStaticGNUPlot(const zelko::Environment& environment, QWidget* parent)
    : QWidget(parent),
      environment_(environment),
      picturePath_(environment.exchangeFolder / ("gnuplot_view-" + zelko::uniqueTag() + ".png")),
      timeLimit_(zelko::kGnuplotTimeLimit)
{
    resizeTimer_.setSingleShot(true);
    resizeTimer_.setInterval(kResizeSettleMs);
    connect(&resizeTimer_, &QTimer::timeout, this, &CStaticGNUPlot::draw);
    limitTimer_.setSingleShot(true);
    connect(&limitTimer_, &QTimer::timeout, this, &CStaticGNUPlot::giveUp);
}

CStaticGNUPlot::~CStaticGNUPlot()
{
    // A gnuplot given up on may still be ending; none outlives the control.
    for (QProcess* program : findChildren<QProcess*>()) {
        program->disconnect(this);
        if (program->state() != QProcess::NotRunning) {
            killProgram(program);
            program->waitForFinished();
        }
    }
    std::error_code ignored;
    std::filesystem::remove(picturePath_, ignored);
}

void CStaticGNUPlot::clear()
{
    script_.clear();
    ++loads_;
    resizeTimer_.stop();
    dropPicture();
}

void CStaticGNUPlot::load(const std::filesystem::path& script)
{
    script_ = std::filesystem::absolute(script);
    ++loads_;
    resizeTimer_.stop();
    draw();
}

QSize CStaticGNUPlot::pixelSize() const { return size() * devicePixelRatioF(); }

void CStaticGNUPlot::draw()
{
    if (script_.empty())
        return;
    if (drawing_) {
        drawAgain_ = true;
        return;
    }
    const QSize pixels = pixelSize();
    std::string error;
    if (pixels.width() < kSmallestSide || pixels.height() < kSmallestSide
        || !zelko::ensureFolder(environment_.exchangeFolder, error) || !startProgram()) {
        dropPicture();
        return;
    }
    QByteArray commands = QByteArrayLiteral("set terminal pngcairo size ") + QByteArray::number(pixels.width()) + ','
                          + QByteArray::number(pixels.height()) + '\n';
    commands += "set output " + quoted(picturePath_) + '\n';
    commands += "load " + quoted(script_) + '\n';
    // The picture is complete only once its file is closed.
    commands += "unset output\nset print '-'\nprint 'DONE'\n";
    drawing_ = true;
    drawAgain_ = false;
    drawingSize_ = pixels;
    drawingLoad_ = loads_;
    answer_.clear();
    program_->write(commands);
    limitTimer_.start(timeLimit_);
}

bool CStaticGNUPlot::startProgram()
{
    if (program_)
        return true;
    program_ = new QProcess(this);
    program_->setStandardErrorFile(QProcess::nullDevice());
#ifdef Q_OS_UNIX
    program_->setChildProcessModifier([] { ::setpgid(0, 0); });
#endif
    connect(program_, &QProcess::readyReadStandardOutput, this, &CStaticGNUPlot::readAnswer);
    connect(program_, &QProcess::finished, this, &CStaticGNUPlot::giveUp);
    connect(program_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        // The others come with a finish, or on a write to a program already gone.
        if (error == QProcess::FailedToStart)
            giveUp();
    });
    program_->start(QString::fromStdString(environment_.gnuplotProgram), QStringList());
    // Not there at all: said at once, and nothing more will come of it.
    return program_ != nullptr;
}

void CStaticGNUPlot::readAnswer()
{
    answer_ += program_->readAllStandardOutput();
    if (!answer_.contains(kDone)) {
        // A program that talks without end keeps no more than a partial "DONE".
        if (answer_.size() > kDone.size())
            answer_ = answer_.right(kDone.size());
        return;
    }
    limitTimer_.stop();
    drawing_ = false;
    answer_.clear();
    if (drawingLoad_ != loads_ || drawingSize_ != pixelSize())
        drawAgain_ = true;
    if (drawingLoad_ == loads_ && !script_.empty()) {
        QImage image(QString::fromStdU16String(picturePath_.u16string()));
        picture_ = QPixmap::fromImage(image);
        picture_.setDevicePixelRatio(devicePixelRatioF());
        update();
        emit pictureChanged();
    }
    if (drawAgain_)
        draw();
}

void CStaticGNUPlot::dropPicture()
{
    picture_ = QPixmap();
    update();
    emit pictureChanged();
}

void CStaticGNUPlot::giveUp()
{
    // Hung, gone or never there: the control is left empty, and whatever draws
    // next starts another gnuplot.
    dropProgram();
    limitTimer_.stop();
    const bool wasDrawing = drawing_;
    drawing_ = false;
    drawAgain_ = false;
    if (wasDrawing)
        dropPicture();
}

void CStaticGNUPlot::dropProgram()
{
    if (!program_)
        return;
    QProcess* program = program_;
    program_ = nullptr;
    program->disconnect(this);
    if (program->state() == QProcess::NotRunning) {
        program->deleteLater();
        return;
    }
    connect(program, &QProcess::finished, program, &QObject::deleteLater);
    killProgram(program);
}

void CStaticGNUPlot::paintEvent(QPaintEvent*)
{
    if (picture_.isNull())
        return;
    QPainter painter(this);
    painter.drawPixmap(0, 0, picture_);
}

void CStaticGNUPlot::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (!script_.empty())
        resizeTimer_.start();
}

QSize CStaticGNUPlot::sizeHint() const { return {800, 420}; }
