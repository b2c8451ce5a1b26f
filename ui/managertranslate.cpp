#include "ui/managertranslate.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QWidget>

#include <filesystem>

#include "base/fileio.h"
#include "base/options.h"
#include "ui/uisettings.h"

namespace {

// Writes only what changes, so a widget whose text has no entry sees no change at all.
template <typename Getter, typename Setter>
void retext(const ManagerTranslate& translator, Getter get, Setter set)
{
    const QString text = get();
    const QString translated = translator.translateText(text);
    if (translated != text)
        set(translated);
}

// Menu titles and items, each action once however many menus show it.
void translateActions(const ManagerTranslate& translator, const QList<QAction*>& actions, QSet<QAction*>& done)
{
    for (QAction* action : actions) {
        if (done.contains(action))
            continue;
        done.insert(action);
        retext(translator, [&] { return action->text(); }, [&](const QString& t) { action->setText(t); });
        if (QMenu* menu = action->menu())
            translateActions(translator, menu->actions(), done);
    }
}

}  // namespace

void ManagerTranslate::translateWindow(QWidget* window, const QString& section)
{
    zelko::Language language;
    language.langId = zelko::ui::currentLanguageId();
    table_.setReverse(language.langId == 0);
    if (!table_.reverse()) {
        const std::u16string path = zelko::translationFilePath(zelko::ui::installationFolder().toStdU16String(),
                                                                language.languageName(), section.toStdU16String());
        std::string error;
        const auto bytes = zelko::readFileBytes(std::filesystem::path(path), error);
        if (!bytes)
            return;
        table_.load(*bytes);
    }
    if (table_.empty() || window == nullptr)
        return;
    translateTexts(window);
}

void ManagerTranslate::translateTexts(QWidget* window)
{
    retext(*this, [&] { return window->windowTitle(); }, [&](const QString& t) { window->setWindowTitle(t); });
    QSet<QAction*> actionsDone;
    // Edits, list boxes, tab bars and everything else hold user data or are left
    // alone; the pages inside a tab widget are descendants and are translated.
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            // Item by item keeps the order, the selection and each item's data.
            for (int i = 0; i < combo->count(); ++i)
                retext(*this, [&] { return combo->itemText(i); }, [&](const QString& t) { combo->setItemText(i, t); });
        } else if (auto* header = qobject_cast<QHeaderView*>(widget)) {
            // Column captions of tables and trees; row numbers stay.
            QAbstractItemModel* model = header->model();
            if (header->orientation() != Qt::Horizontal || model == nullptr)
                continue;
            for (int column = 0; column < model->columnCount(); ++column) {
                const QVariant caption = model->headerData(column, Qt::Horizontal);
                if (caption.typeId() != QMetaType::QString)
                    continue;
                retext(*this, [&] { return caption.toString(); },
                       [&](const QString& t) { model->setHeaderData(column, Qt::Horizontal, t); });
            }
        } else if (auto* menuBar = qobject_cast<QMenuBar*>(widget)) {
            translateActions(*this, menuBar->actions(), actionsDone);
        } else if (auto* menu = qobject_cast<QMenu*>(widget)) {
            translateActions(*this, menu->actions(), actionsDone);
        } else if (auto* label = qobject_cast<QLabel*>(widget)) {
            retext(*this, [&] { return label->text(); }, [&](const QString& t) { label->setText(t); });
        } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            retext(*this, [&] { return button->text(); }, [&](const QString& t) { button->setText(t); });
        } else if (auto* group = qobject_cast<QGroupBox*>(widget)) {
            retext(*this, [&] { return group->title(); }, [&](const QString& t) { group->setTitle(t); });
        }
    }
}

QString ManagerTranslate::translateText(const QString& text) const
{
    return QString::fromStdU16String(table_.translate(text.toStdU16String()));
}

std::u16string ManagerTranslate::translateText(std::u16string_view text) const { return table_.translate(text); }

namespace zelko::ui {

void retranslateAfterLanguageChange(ManagerTranslate& translator, QWidget* window, const QString& section,
                                    int oldLangId)
{
    const int newLangId = currentLanguageId();
    if (newLangId != 0 && oldLangId != 0) {
        setCurrentLanguageId(0);
        translator.translateWindow(window, section);
        setCurrentLanguageId(newLangId);
    }
    translator.translateWindow(window, section);
}

}  // namespace zelko::ui
