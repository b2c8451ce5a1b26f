#pragma once
// The translator every translated screen carries beside its widget base: it
// rewrites an already built window's texts into the chosen language, and back
// to English through the entries it has loaded so far.

#include <QString>

#include <string>
#include <string_view>

#include "base/translationtable.h"

class QWidget;

class ManagerTranslate {
public:
    virtual ~ManagerTranslate() = default;

    // Loads section's file of the current language (nothing for English) and
    // translates the window's title and the texts of its descendants. A missing
    // file leaves the window as it is.
    void translateWindow(QWidget* window, const QString& section);

    // A text the screen builds itself (an item caption, a message).
    QString translateText(const QString& text) const;
    std::u16string translateText(std::u16string_view text) const;

    const zelko::TranslationTable& translationTable() const { return table_; }

private:
    void translateTexts(QWidget* window);

    zelko::TranslationTable table_;
};

namespace zelko::ui {

// The main view after the options changed the language from oldLangId to the
// current one: from one translation to another the texts first go back to
// English, so the new file meets the texts it was written for.
void retranslateAfterLanguageChange(ManagerTranslate& translator, QWidget* window, const QString& section,
                                    int oldLangId);

}  // namespace zelko::ui
