#pragma once

#include <QWidget>

#include <string_view>

namespace vorlane {

// Stands in, until it is built, for a screen the window already routes to: its icon and name,
// so that navigating there shows where one is rather than an empty pane.
class PlaceholderScreen : public QWidget {
    Q_OBJECT

public:
    PlaceholderScreen(std::string_view symbol, const QString& title, QWidget* parent = nullptr);
};

} // namespace vorlane
