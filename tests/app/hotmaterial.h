#pragma once
// A new material on the main view with its flow stress set to hot, as a user starts one.

#include <QAbstractButton>

#include "app/mainframe.h"
#include "app/matview.h"

namespace zelko::test {

inline CMATView* newHotMaterial(CMainFrame& frame)
{
    CMATView* view = frame.view();
    view->newMaterial();
    static_cast<QAbstractButton*>(view->findChild<QWidget*>(QStringLiteral("1004")))->click();
    return view;
}

}  // namespace zelko::test
