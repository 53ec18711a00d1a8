#include "vdp1/vdp1_character_pattern/replacement_image.h"

#include <png.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "vdp1/vdp1_character_pattern/tiff_file.h"

namespace vdpgl {

namespace {

bool SizeAllowed(uint32_t width, uint32_t height, const std::string& path, std::string& error) {
    if (width == 0 || height == 0 || width > kLargestReplacementSide || height > kLargestReplacementSide) {
        error = "\"" + path + "\" is " + std::to_string(width) + " x " + std::to_string(height) +
                " pixels; a replacement image may have from 1 to " + std::to_string(kLargestReplacementSide) +
                " pixels a side";
        return false;
    }
    return true;
}

// 8-bit RGBA with unassociated alpha, in one plane: read as it is, so that
// half-transparent texels keep their colours (the general reader would
// premultiply them).
bool ReadPlainRgba(TIFF* tiff, ReplacementPicture& picture) {
    uint16_t samples = 0, bits = 0, planar = 0, photometric = 0, extraCount = 0;
    uint16_t* extra = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extra);
    uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
    if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) || photometric != PHOTOMETRIC_RGB || samples != 4 ||
        bits != 8 || planar != PLANARCONFIG_CONTIG || extraCount != 1 || extra[0] != EXTRASAMPLE_UNASSALPHA ||
        orientation != ORIENTATION_TOPLEFT || TIFFScanlineSize(tiff) != tmsize_t{4} * picture.width)
        return false;
    for (int y = 0; y < picture.height; ++y)
        if (TIFFReadScanline(tiff, picture.texels.data() + static_cast<size_t>(y) * picture.width,
                             static_cast<uint32_t>(y), 0) != 1)
            return false;
    return true;
}

bool ReadTiff(const std::string& path, ReplacementPicture& picture, std::string& error) {
    std::string messages;
    TIFF* tiff = OpenTiff(path, "r", messages);
    if (!tiff) {
        error = "\"" + path + "\" cannot be opened as a TIFF image" + (messages.empty() ? "" : ": " + messages);
        return false;
    }
    uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    bool ok = SizeAllowed(width, height, path, error);
    if (ok) {
        picture.width = static_cast<int>(width);
        picture.height = static_cast<int>(height);
        picture.texels.assign(static_cast<size_t>(width) * height, 0u);
        if (!ReadPlainRgba(tiff, picture)) {
            char reason[1024] = "";
            TIFFRGBAImage image;
            ok = TIFFRGBAImageOK(tiff, reason) && TIFFRGBAImageBegin(&image, tiff, 0, reason);
            if (ok) {
                ok = TIFFRGBAImageGet(&image, picture.texels.data(), width, height) == 1;
                TIFFRGBAImageEnd(&image);
            }
            // The raster's first row is the image's bottom one.
            for (uint32_t y = 0; ok && y < height / 2; ++y)
                std::swap_ranges(picture.texels.begin() + static_cast<ptrdiff_t>(y * width),
                                 picture.texels.begin() + static_cast<ptrdiff_t>((y + 1) * width),
                                 picture.texels.begin() + static_cast<ptrdiff_t>((height - 1 - y) * width));
            if (!ok)
                error = "\"" + path + "\" cannot be decoded: " +
                        (*reason ? std::string(reason) : messages.empty() ? "unreadable image data" : messages);
        }
    }
    TIFFClose(tiff);
    return ok;
}

bool ReadPngImage(const std::string& path, ReplacementPicture& picture, std::string& error) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) {
        error = "\"" + path + "\" cannot be read as a PNG image: " + image.message;
        return false;
    }
    if (!SizeAllowed(image.width, image.height, path, error)) {
        png_image_free(&image);
        return false;
    }
    image.format = PNG_FORMAT_RGBA;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.texels.assign(static_cast<size_t>(image.width) * image.height, 0u);
    if (!png_image_finish_read(&image, nullptr, picture.texels.data(), 0, nullptr)) {
        error = "\"" + path + "\" cannot be decoded: " + image.message;
        png_image_free(&image);
        return false;
    }
    return true;
}

}  // namespace

bool ReadReplacementImage(const std::string& path, ReplacementPicture& picture, std::string& error) {
    char magic[8] = {};
    {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            error = "\"" + path + "\" cannot be opened";
            return false;
        }
        file.read(magic, sizeof magic);
    }
    if (std::memcmp(magic, "\x89PNG\r\n\x1a\n", 8) == 0) return ReadPngImage(path, picture, error);
    if (std::memcmp(magic, "II*\0", 4) == 0 || std::memcmp(magic, "MM\0*", 4) == 0)
        return ReadTiff(path, picture, error);
    error = "\"" + path + "\" is neither a TIFF nor a PNG image";
    return false;
}

bool CReplacementImages::StampOf(const std::string& path, Stamp& stamp) {
    std::error_code ec;
    const auto time = std::filesystem::last_write_time(path, ec);
    if (ec) return false;
    const auto size = std::filesystem::file_size(path, ec);
    if (ec) return false;
    stamp = {static_cast<int64_t>(time.time_since_epoch().count()), size};
    return true;
}

std::shared_ptr<const ReplacementPicture> CReplacementImages::Get(const std::string& path, std::string& error) {
    return Fetch(path, error, true);
}

void CReplacementImages::Preload(std::vector<std::string> paths) {
    StopPreload();
    stopPreload = false;
    preloader = std::thread([this, paths = std::move(paths)] {
        std::string ignored;
        for (const std::string& path : paths) {
            if (stopPreload) return;
            {
                std::lock_guard lock(mutex);
                if (bytes >= budget - budget / 8) return;  // room left for what the frames ask
            }
            Fetch(path, ignored, false);
        }
    });
}

void CReplacementImages::StopPreload() {
    stopPreload = true;
    if (preloader.joinable()) preloader.join();
}

std::shared_ptr<const ReplacementPicture> CReplacementImages::Fetch(const std::string& path, std::string& error,
                                                                    bool report) {
    error.clear();
    Stamp stamp;
    const bool exists = StampOf(path, stamp);
    std::shared_ptr<const ReplacementPicture> last;
    {
        std::lock_guard lock(mutex);
        if (const auto it = entries.find(path); it != entries.end()) {
            useOrder.splice(useOrder.begin(), useOrder, it->second.use);
            if (exists && it->second.stamp == stamp) return it->second.picture;
            last = it->second.picture;
        }
    }
    // Read outside the lock: a large image takes a while.
    auto picture = std::make_shared<ReplacementPicture>();
    std::string failure;
    if (exists && ReadReplacementImage(path, *picture, failure)) {
        std::lock_guard lock(mutex);
        // The read ahead only fills what is missing: a frame may have read
        // the file since, saved over after this read began.
        if (const auto it = entries.find(path); !report && it != entries.end()) return it->second.picture;
        Keep(path, picture, stamp);
        return picture;
    }
    if (!exists) failure = "\"" + path + "\" cannot be opened";
    // A file being written, or broken: said once, and the last good picture stays.
    std::lock_guard lock(mutex);
    if (!report) return last;
    if (reported.size() > 1024) reported.clear();  // bounded: at worst a message comes again
    if (reported.insert(path + "@" + std::to_string(stamp.modified) + "/" + std::to_string(stamp.size)).second)
        error = failure;
    return last;
}

bool CReplacementImages::Changed(const std::string& path) {
    Stamp kept;
    {
        std::lock_guard lock(mutex);
        const auto it = entries.find(path);
        if (it == entries.end()) return false;  // never read: nothing to look at on disk
        kept = it->second.stamp;
    }
    Stamp stamp;
    return StampOf(path, stamp) && !(stamp == kept);
}

void CReplacementImages::Keep(const std::string& path, std::shared_ptr<const ReplacementPicture> picture,
                              const Stamp& stamp) {
    if (const auto it = entries.find(path); it != entries.end()) {
        bytes -= it->second.picture->texels.size() * 4;
        useOrder.erase(it->second.use);
        entries.erase(it);
    }
    bytes += picture->texels.size() * 4;
    useOrder.push_front(path);
    entries[path] = {std::move(picture), stamp, useOrder.begin()};
    Trim();
}

void CReplacementImages::Trim() {
    // The picture just kept stays, whatever its size.
    while (bytes > budget && useOrder.size() > 1) {
        const auto it = entries.find(useOrder.back());
        bytes -= it->second.picture->texels.size() * 4;
        entries.erase(it);
        useOrder.pop_back();
    }
}

void CReplacementImages::SetBudget(uint64_t value) {
    std::lock_guard lock(mutex);
    budget = value;
    Trim();
}

uint64_t CReplacementImages::Bytes() const {
    std::lock_guard lock(mutex);
    return bytes;
}

void CReplacementImages::Clear() {
    std::lock_guard lock(mutex);
    entries.clear();
    useOrder.clear();
    reported.clear();
    bytes = 0;
}

}  // namespace vdpgl
