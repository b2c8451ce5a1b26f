#include <QtTest>

#include "app/mainframe.h"

class MainFrameTest : public QObject {
    Q_OBJECT
private slots:
    void showsTheApplicationTitle()
    {
        CMainFrame frame;
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        QCOMPARE(frame.windowTitle(), QStringLiteral("ZELKO_MAT"));
        QVERIFY(frame.centralWidget() != nullptr);
    }
};

QTEST_MAIN(MainFrameTest)
#include "mainframetest.moc"
