#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QString>
#include <memory>
#include <string>
#include <string_view>

#include "platform/icon_source.h"

class QPainter;

namespace ferrowyn {

/// Makes the program's drawings readable under ":/ferrowyn". May be called repeatedly.
void loadResources();

/// The program's icon, as a file that the toolkit can read.
[[nodiscard]] QString productIconFile();

/// Symbols in any colour, size and weight: the desktop's where it has one of that name, otherwise ours. Each image is
/// rendered once and kept. Main thread.
class SymbolImages {
public:
    /// The side of the square that a symbol of this size takes. The drawings fill about 20 of the 24 units of their
    /// grid, so that what is visible is `points` large.
    [[nodiscard]] static constexpr double boxSide(double points) { return points * gridUnits / drawnUnits; }
    /// The size of the symbol that fills a square with sides of `side` points.
    [[nodiscard]] static constexpr double pointsIn(double side) { return side * drawnUnits / gridUnits; }

    /// A symbol of this size in points around a centre. An unknown name draws nothing.
    void paint(QPainter& painter, std::string_view name, double centerX, double centerY, double points,
               const QColor& color, SymbolWeight weight = SymbolWeight::medium);

private:
    static constexpr double gridUnits = 24;
    static constexpr double drawnUnits = 20;

    struct Key {
        std::string name;
        int deviceSide;
        /// In hundredths of a device pixel.
        int devicePoints;
        QRgb color;
        SymbolWeight weight;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed) {
            return qHashMulti(seed, std::hash<std::string>{}(key.name), key.deviceSide, key.devicePoints, key.color,
                              static_cast<int>(key.weight));
        }
    };

    [[nodiscard]] static QImage render(const Key& key, double points, double scale);
    [[nodiscard]] static QImage drawing(const Key& key);

    QHash<Key, QImage> images_;
};

/// The pixels as an image; null when there are fewer of them than its size needs.
[[nodiscard]] QImage pixelImage(const PixelBuffer& buffer);

/// Application icons as images. Each is rendered once for each size and kept. Main thread.
class IconImages {
public:
    /// Null when the icon cannot be rendered. Valid until the next call.
    [[nodiscard]] const QImage& image(const std::shared_ptr<const IconImage>& icon, int deviceSide);
    void clear() { images_.clear(); }

private:
    struct Key {
        const IconImage* icon;
        int deviceSide;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed) {
            return qHashMulti(seed, reinterpret_cast<quintptr>(key.icon), key.deviceSide);
        }
    };
    struct Entry {
        QImage image;
        /// Keeps the icon alive, so that no other icon gets the address in the key.
        std::shared_ptr<const IconImage> icon;
    };

    QHash<Key, Entry> images_;
};

}  // namespace ferrowyn
