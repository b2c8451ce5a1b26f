#pragma once
// Small bridges between the engine's texts and numbers and the widgets: the
// engine formats and parses (locale-free), the screens only show the result.

#include <QList>
#include <QPointF>
#include <QString>

#include <optional>
#include <string>

#include "material/chartpoints.h"

class QDialog;
class QDialogButtonBox;
class QTableWidget;
class QWidget;

namespace zelko::ui {

inline QString fromUtf8(const std::string& text) { return QString::fromStdString(text); }

// A double as an edit field shows it ("%.15g", the fields' precision).
QString fieldText(double value);
// A typed field as a number: the whole field, an optional sign and a decimal
// number; nothing for anything else (empty, "1,5", "abc", "inf").
std::optional<double> fieldNumber(const QString& text);
// printf-style formatting of one value through the engine ("%g", "%.7f", ...).
QString numberText(const char* format, double value);
// The engine's curve points as a chart series takes them.
QList<QPointF> pointList(const zelko::ChartPoints& points);

// OK and Cancel with fixed captions (a desktop theme's "&OK" would miss the
// translation files), neither taking Enter, wired to accept and reject.
QDialogButtonBox* okCancelButtons(QDialog* dialog);

// A table of points: compact rows selected whole, no row header; returns the
// height of one row, so a screen can size the list to show a number of them.
int setUpPointList(QTableWidget* list);

// The message the screens give when a typed field is not a number; focuses it.
void refuseField(QWidget* parent, QWidget* field);

}  // namespace zelko::ui
