// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/OrgAvatar.h"

#include "QtText.h"
#include "model/Organization.h"
#include "store/DataStore.h"

#include <QBuffer>
#include <QCache>
#include <QCryptographicHash>
#include <QFont>
#include <QImageReader>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace vorlane {

namespace {

constexpr qreal cornerRatio = 0.22;
constexpr qreal initialsRatio = 0.36;

QRectF squareIn(const QRectF& rect) {
    const qreal side = std::min(rect.width(), rect.height());
    return {rect.center().x() - side / 2, rect.center().y() - side / 2, side, side};
}

// Decoded logos by a digest of their bytes: the sidebar and the lists repaint often, and
// decoding a PNG each time would show when scrolling.
QCache<QByteArray, QImage>& decodedLogos() {
    static QCache<QByteArray, QImage> cache(64);
    return cache;
}

} // namespace

QImage OrgAvatar::logo(DataStore& store, Organization& organization) {
    const auto& bytes = store.logo(organization);
    if (!bytes || bytes->empty()) {
        return {};
    }
    const QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes->data()),
                                                    static_cast<qsizetype>(bytes->size()));
    const QByteArray key = QCryptographicHash::hash(data, QCryptographicHash::Sha1);
    if (const QImage* cached = decodedLogos().object(key)) {
        return *cached;
    }
    // Filling the square crops the longer side, so the shorter one is what must stay sharp.
    QImage image =
        decode(data, QSize(largestDecodedSide, largestDecodedSide), Qt::KeepAspectRatioByExpanding);
    decodedLogos().insert(key, new QImage(image));
    return image;
}

QImage OrgAvatar::decode(const QByteArray& bytes, const QSize& bound, Qt::AspectRatioMode mode) {
    // The buffer holds its own copy: a raw view of the record's bytes is not kept past this.
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.isValid() && (size.width() > bound.width() || size.height() > bound.height())) {
        reader.setScaledSize(size.scaled(bound, mode).boundedTo(size));
    }
    return reader.read();
}

void OrgAvatar::paint(QPainter& painter, const QRectF& rect, const QImage& logo,
                      const QString& initials, Palette::Color color) {
    const QRectF square = squareIn(rect);
    const qreal side = square.width();
    QPainterPath clip;
    clip.addRoundedRect(square, side * cornerRatio, side * cornerRatio);

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setClipPath(clip, Qt::IntersectClip);
    if (!logo.isNull()) {
        // Scaled to fill: the shorter side fits, the longer one is cropped evenly.
        const QSizeF scaled =
            QSizeF(logo.size()).scaled(square.size(), Qt::KeepAspectRatioByExpanding);
        const QRectF target(square.center().x() - scaled.width() / 2,
                            square.center().y() - scaled.height() / 2, scaled.width(),
                            scaled.height());
        painter.drawImage(target, logo);
    } else {
        const Palette::Rgb rgb = Palette::rgb(color);
        const QColor base(rgb.red, rgb.green, rgb.blue);
        QLinearGradient gradient(square.topLeft(), square.bottomRight());
        gradient.setColorAt(0, base.lighter(125));
        gradient.setColorAt(1, base.darker(125));
        painter.fillRect(square, gradient);
        QFont font = painter.font();
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(side * initialsRatio))));
        font.setWeight(QFont::DemiBold);
        painter.setFont(font);
        // White on the saturated avatar colours reads in light and dark themes alike.
        painter.setPen(Qt::white);
        painter.drawText(square, Qt::AlignCenter, initials);
    }
    painter.restore();
}

void OrgAvatar::paint(QPainter& painter, const QRectF& square, DataStore& store,
                      Organization& organization) {
    paint(painter, square, logo(store, organization), toQString(organization.initials()),
          organization.avatarColor());
}

QPixmap OrgAvatar::pixmap(DataStore& store, Organization& organization, int size,
                          qreal devicePixelRatio) {
    const int device = static_cast<int>(std::lround(size * devicePixelRatio));
    QPixmap pixmap(device, device);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(painter, QRectF(0, 0, size, size), store, organization);
    return pixmap;
}

} // namespace vorlane
