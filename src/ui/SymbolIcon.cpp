// SPDX-License-Identifier: GPL-3.0-or-later
#include "SymbolIcon.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPalette>

#include <utility>

namespace vorlane {

namespace {

// Symbol name to Breeze icon name; add a row for every symbol a screen shows.
constexpr std::pair<std::string_view, const char*> symbolTable[] = {
    {"square.grid.2x2", "view-grid"},
    {"building.2", "group"},
    {"star", "favorite"},
    {"exclamationmark.triangle", "data-warning"},
    {"xmark.circle", "dialog-cancel"},
    {"key", "application-pgp-keys"},
    {"dollarsign.circle", "format-currency"},
    {"archivebox", "archive-insert"},
    {"server.rack", "network-server"},
    {"cpu", "computer"},
    {"globe", "globe"},
    {"gearshape.2", "configure"},
    {"slider.horizontal.3", "settings-configure"},
    {"w.circle", "internet-web-browser"},
    {"globe.badge.chevron.backward", "internet-services"},
    {"network", "network-workgroup"},
    {"envelope", "mail-message"},
    {"cylinder", "server-database"},
    {"cloud", "folder-cloud"},
    {"terminal", "akonadiconsole"},
    {"arrow.up.arrow.down.circle", "network-connect"},
    {"lock.shield", "security-high"},
    {"safari", "internet-web-browser"},
    {"calendar.badge.clock", "view-calendar-upcoming-events"},
    {"note.text", "note"},
    {"paperplane", "mail-send"},
    {"minus.circle", "list-remove"},
    {"checkmark.circle", "dialog-ok-apply"},
    {"checkmark.circle.fill", "emblem-success"},
    {"clock", "clock"},
    {"exclamationmark.octagon", "dialog-error"},
    {"xmark.octagon", "data-error"},
    {"lock", "object-locked"},
    {"gearshape", "configure"},
    {"magnifyingglass", "search"},
    {"plus", "list-add"},
    {"doc.on.clipboard", "edit-paste"},
    {"doc.on.doc", "edit-copy"},
    {"eye", "password-show-on"},
    {"eye.slash", "password-show-off"},
    {"plus.circle", "list-add"},
    {"building.2.fill", "group"},
    {"plus.rectangle.on.folder", "folder-new"},
    {"gear", "configure"},
    {"bell", "notifications"},
    {"chevron.right", "go-next"},
    {"calendar", "view-calendar"},
    {"creditcard", "wallet-open"},
    {"building", "folder-network"},
    {"star.fill", "rating"},
    {"star.slash", "rating-unrated"},
    {"exclamationmark.triangle.fill", "data-warning"},
    {"pencil", "document-edit"},
    {"photo.badge.plus", "insert-image"},
    {"xmark.circle.fill", "dialog-close"},
    {"person", "im-user"},
    {"phone", "call-start"},
    {"chevron.left", "go-previous"},
    {"arrow.right.circle", "go-next-view"},
    {"link", "link"},
    {"square.and.arrow.up", "document-share"},
    {"square.and.arrow.down", "document-import"},
    {"arrow.uturn.backward", "edit-undo"},
    {"trash", "edit-delete"},
    {"arrow.up.right.square", "document-open-remote"},
    {"arrow.left.arrow.right", "transform-move-horizontal"},
    {"checkmark", "checkmark"},
    {"repeat", "media-repeat-all"},
    {"cart", "amarok_cart_view"},
    {"arrow.clockwise", "view-refresh"},
    {"arrow.triangle.2.circlepath", "media-playlist-repeat"},
    {"tag", "tag"},
    {"shield", "security-medium"},
    {"plus.square.on.square", "window-duplicate"},
    {"wand.and.stars", "password-generate"},
    {"qrcode", "view-barcode-qr"},
    {"lock.doc", "document-encrypt"},
    {"doc.text.magnifyingglass", "document-preview"},
    {"shippingbox", "package"},
    {"externaldrive", "drive-harddisk"},
};

} // namespace

void SymbolIcon::installTheme() {
    QStringList paths = QIcon::themeSearchPaths();
    QStringList dataDirs =
        QString::fromLocal8Bit(qgetenv("XDG_DATA_DIRS")).split(u':', Qt::SkipEmptyParts);
    if (dataDirs.isEmpty()) {
        dataDirs = {QStringLiteral("/usr/local/share"), QStringLiteral("/usr/share")};
    }
    dataDirs.prepend(QDir::homePath() + QStringLiteral("/.local/share"));
    for (const QString& dir : dataDirs) {
        const QString icons = dir + QStringLiteral("/icons");
        if (!paths.contains(icons) && QFileInfo(icons).isDir()) {
            paths << icons;
        }
    }
    QIcon::setThemeSearchPaths(paths);
    // Breeze's monochrome icons are drawn for one background: the dark variant for a dark palette.
    const bool dark = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
    QIcon::setThemeName(dark ? QStringLiteral("breeze-dark") : QStringLiteral("breeze"));
}

QString SymbolIcon::themeName(std::string_view symbol) {
    for (const auto& [name, theme] : symbolTable) {
        if (name == symbol) {
            return QString::fromLatin1(theme);
        }
    }
    return {};
}

QIcon SymbolIcon::icon(std::string_view symbol) {
    const QString name = themeName(symbol);
    QIcon icon = QIcon::fromTheme(name.isEmpty() ? QStringLiteral("unknown") : name);
    if (icon.isNull()) {
        icon = QIcon::fromTheme(QStringLiteral("unknown"));
    }
    return icon;
}

} // namespace vorlane
