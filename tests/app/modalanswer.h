#pragma once
// Screens open modal dialogs with exec(); a test answers them from the event
// loop: the handler runs on the next modal widget that appears.

#include <QApplication>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace zelko::test {

inline void whenModalOpens(std::function<void(QWidget*)> handler, QWidget* notThis = nullptr)
{
    auto shared = std::make_shared<std::function<void(QWidget*)>>(std::move(handler));
    auto poll = std::make_shared<std::function<void(int)>>();
    *poll = [shared, poll, notThis](int triesLeft) {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal != notThis) {
            (*shared)(modal);
            return;
        }
        if (triesLeft > 0)
            QTimer::singleShot(10, [poll, triesLeft] { (*poll)(triesLeft - 1); });
    };
    QTimer::singleShot(0, [poll] { (*poll)(500); });
}

// The text of the message box that opens next, answered with button.
inline void answerMessage(QString* text, QMessageBox::StandardButton button = QMessageBox::Ok)
{
    whenModalOpens([text, button](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        if (!box) {
            modal->close();
            return;
        }
        if (text)
            *text = box->text();
        if (QAbstractButton* answer = box->button(button))
            answer->click();
        else
            box->close();
    });
}

inline QPushButton* buttonNamed(QWidget* parent, const QString& text)
{
    for (QPushButton* button : parent->findChildren<QPushButton*>())
        if (button->text() == text)
            return button;
    return nullptr;
}

inline void pressOk(QWidget* dialog)
{
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
}

inline void pressCancel(QWidget* dialog)
{
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
}

}  // namespace zelko::test
