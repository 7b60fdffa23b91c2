#pragma once

#include <QHash>
#include <QImage>
#include <memory>

#include "platform/icon_source.h"

namespace ferrowyn {

/// The pixels as an image; null when they are not as many as they are said to be.
[[nodiscard]] QImage pixelImage(const PixelBuffer& buffer);

/// Application icons as images, each rendered once a device size and kept while it is among those used lately. Main
/// thread.
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
        /// Keeps the address in the key from being given to another icon.
        std::shared_ptr<const IconImage> icon;
    };

    QHash<Key, Entry> images_;
};

}  // namespace ferrowyn
