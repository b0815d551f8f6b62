#pragma once

#include <QMainWindow>

class QListWidget;
class QStackedWidget;

namespace vorlane {

// The main window: the sidebar of destinations beside the detail pane.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    static constexpr QSize minimumWindowSize{1000, 650};
    static constexpr QSize defaultWindowSize{1280, 800};

private:
    QListWidget* m_sidebar;
    QStackedWidget* m_detail;
};

} // namespace vorlane
