// SPDX-License-Identifier: GPL-3.0-or-later
// The shared list pieces, offscreen: the avatar's logo and its fallback, the sectioned list's
// rows and spoken sentences, and the row view's keyboard paths (Return, the menu key).

#include "ScreenFixture.h"
#include "components/OrgAvatar.h"
#include "components/RowListView.h"
#include "components/SectionedListModel.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <QBuffer>
#include <QContextMenuEvent>
#include <QSignalSpy>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

std::vector<std::uint8_t> pngOf(const QColor& color) {
    QImage image(40, 20, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return {bytes.begin(), bytes.end()};
}

class ListComponentsTest : public ScreenFixture {};

TEST_F(ListComponentsTest, AvatarShowsTheLogoAndFallsBackToInitialsOnCorruptBytes) {
    Organization& organization = addOrganization("Acme Ltd");
    const auto pixel = [&](int x, int y) {
        return OrgAvatar::pixmap(store(), organization, 64, 1.0).toImage().pixelColor(x, y);
    };
    store().setLogo(organization, pngOf(Qt::red));
    EXPECT_EQ(pixel(32, 32), QColor(Qt::red)) << "a wide logo fills the square";
    EXPECT_EQ(pixel(8, 32), QColor(Qt::red));
    EXPECT_EQ(pixel(0, 0).alpha(), 0) << "corners are rounded off (radius 0.22 of the size)";

    std::vector<std::uint8_t> corrupt = pngOf(Qt::red);
    corrupt.resize(corrupt.size() / 2);
    std::fill(corrupt.begin() + 8, corrupt.end(), std::uint8_t{0x5a});
    store().setLogo(organization, corrupt);
    const Palette::Rgb rgb = Palette::rgb(organization.avatarColor());
    const QColor edge = pixel(4, 32);
    EXPECT_NE(edge, QColor(Qt::red)) << "the corrupt logo is not shown";
    // The gradient runs from a lighter to a darker shade of the avatar colour: same hue.
    EXPECT_NEAR(edge.hslHue(), QColor(rgb.red, rgb.green, rgb.blue).hslHue(), 6);
    EXPECT_EQ(edge.alpha(), 255);
    EXPECT_EQ(pixel(0, 0).alpha(), 0);
}

TEST_F(ListComponentsTest, SectionedRowsSkipHeadersAndSpeakWhatTheyShow) {
    Organization& organization = addOrganization("Acme Ltd");
    organization.projectName = "Relaunch";
    ServiceRecord& service = addService(organization, "Mail server", [this](ServiceRecord& s) {
        s.provider = "Fastmail";
        s.expirationDate = m_clock.now() + std::chrono::milliseconds(10 * 24h);
    });
    SectionedListModel model(store(), m_calendar);
    model.setSections({{QStringLiteral("Organizations"), {&organization}, {}},
                       {QStringLiteral("Empty"), {}, {}},
                       {QStringLiteral("Services & Credentials"), {}, {&service}}});
    ASSERT_EQ(model.rowCount(), 4) << "a section without rows has no header either";
    const auto spoken = [&](int row) {
        return model.data(model.index(row), Qt::AccessibleTextRole).toString();
    };
    EXPECT_EQ(spoken(0), QStringLiteral("Organizations, 1"));
    EXPECT_EQ(model.flags(model.index(0)), Qt::NoItemFlags);
    EXPECT_EQ(spoken(1), QStringLiteral("Acme Ltd, project Relaunch, 1 services."));
    EXPECT_EQ(model.organization(model.index(1)), &organization);
    EXPECT_EQ(model.service(model.index(1)), nullptr);
    EXPECT_EQ(spoken(3), QStringLiteral("Mail server, Fastmail. Status Active. Expiring Soon."));
    EXPECT_EQ(model.service(model.index(3)), &service);
    EXPECT_EQ(model.organization(model.index(3)), nullptr);
    EXPECT_EQ(model.service(model.index(2)), nullptr);
}

TEST_F(ListComponentsTest, ReturnChoosesAndTheMenuKeyAsksForTheCurrentRowsMenu) {
    Organization& organization = addOrganization("Acme Ltd");
    ServiceRecord& service = addService(organization, "Mail server");
    SectionedListModel model(store(), m_calendar);
    model.setSections({{QStringLiteral("Services"), {}, {&service}}});
    RowListView view;
    view.setModel(&model);
    view.resize(400, 300);
    view.show();
    QSignalSpy chosen(&view, &RowListView::rowChosen);
    QSignalSpy menus(&view, &RowListView::rowMenuRequested);

    view.setCurrentIndex(model.index(0));
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(chosen.count(), 0) << "a section header is not a row to choose";

    view.setCurrentIndex(model.index(1));
    QTest::keyClick(&view, Qt::Key_Return);
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toModelIndex(), model.index(1));

    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(0, 0),
                          view.mapToGlobal(QPoint(0, 0)));
    QApplication::sendEvent(&view, &key);
    ASSERT_EQ(menus.count(), 1);
    EXPECT_EQ(menus.at(0).at(0).toModelIndex(), model.index(1));

    // The right button over the header asks for nothing.
    const QPoint header = view.visualRect(model.index(0)).center();
    QContextMenuEvent mouse(QContextMenuEvent::Mouse, header, view.viewport()->mapToGlobal(header));
    QApplication::sendEvent(view.viewport(), &mouse);
    EXPECT_EQ(menus.count(), 1);
}

} // namespace
} // namespace vorlane::testing
