#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <string>
#include <string_view>

class QPainter;

namespace ferrowyn {

enum class SymbolWeight { light, regular, medium, semibold };

/// The system symbols, drawn in any colour, size and weight. Each image is rendered once and kept. Main thread.
class SymbolImages {
public:
    /// Centred in a square with sides of `side` points. An unknown name draws nothing.
    void paint(QPainter& painter, std::string_view name, double centerX, double centerY, double side,
               const QColor& color, SymbolWeight weight = SymbolWeight::medium);

private:
    struct Key {
        std::string name;
        int deviceSide;
        QRgb color;
        SymbolWeight weight;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed) {
            return qHashMulti(seed, std::hash<std::string>{}(key.name), key.deviceSide, key.color,
                              static_cast<int>(key.weight));
        }
    };

    [[nodiscard]] static QImage render(const Key& key);

    QHash<Key, QImage> images_;
};

}  // namespace ferrowyn
