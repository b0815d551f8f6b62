#include "MainWindow.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "model/SidebarItem.h"

#include <QLabel>
#include <QListWidget>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace vorlane {

namespace {

QWidget* makePlaceholder(SidebarItem item) {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    auto* icon = new QLabel;
    icon->setPixmap(SymbolIcon::icon(item.icon()).pixmap(64, 64));
    icon->setAlignment(Qt::AlignCenter);
    auto* title = new QLabel(toQString(item.displayName()));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    title->setFont(font);
    title->setAlignment(Qt::AlignCenter);
    layout->addStretch();
    layout->addWidget(icon);
    layout->addWidget(title);
    layout->addStretch();
    return page;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , m_sidebar(new QListWidget)
    , m_detail(new QStackedWidget) {
    setWindowTitle(QStringLiteral("Vorlane"));
    setMinimumSize(minimumWindowSize);
    resize(defaultWindowSize);

    m_sidebar->setIconSize(QSize(20, 20));
    m_sidebar->setFrameShape(QFrame::NoFrame);
    m_sidebar->setSpacing(2);
    for (const SidebarItem item : SidebarItem::allCases()) {
        auto* row =
            new QListWidgetItem(SymbolIcon::icon(item.icon()), toQString(item.displayName()));
        row->setData(Qt::UserRole, static_cast<int>(item.index()));
        m_sidebar->addItem(row);
        m_detail->addWidget(makePlaceholder(item));
    }
    connect(m_sidebar, &QListWidget::currentRowChanged, m_detail, &QStackedWidget::setCurrentIndex);
    m_sidebar->setCurrentRow(0);

    auto* splitter = new QSplitter;
    splitter->addWidget(m_sidebar);
    splitter->addWidget(m_detail);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({240, defaultWindowSize.width() - 240});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    m_sidebar->setFocus();
}

} // namespace vorlane
