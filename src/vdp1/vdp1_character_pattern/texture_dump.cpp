#include "vdp1/vdp1_character_pattern/texture_dump.h"

#include <cstring>
#include <vector>

#include "vdp1/vdp1_character_pattern/tiff_file.h"

namespace vdpgl {

bool WriteTextureDump(const std::string& path, const uint32_t* rgba, int width, int height, std::string& error) {
    if (!rgba || width <= 0 || height <= 0) {
        error = "\"" + path + "\": the pattern has no pixels to dump";
        return false;
    }
    std::string tiffMessage;
    bool ok = false;
    if (TIFF* tiff = OpenTiff(path, "w", tiffMessage)) {
        const uint16_t extra[1] = {EXTRASAMPLE_UNASSALPHA};
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(height));
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, extra);
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
        std::vector<uint8_t> row(static_cast<size_t>(width) * 4);
        ok = true;
        for (int y = 0; y < height && ok; ++y) {
            // Texels are red, green, blue, alpha in memory order already.
            std::memcpy(row.data(), rgba + static_cast<size_t>(y) * static_cast<size_t>(width), row.size());
            ok = TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), 0) == 1;
        }
        TIFFClose(tiff);  // writes the directory; a full disk shows here too
        if (ok && !tiffMessage.empty()) ok = false;
    }
    if (!ok) error = "\"" + path + "\" could not be written" + (tiffMessage.empty() ? "" : ": " + tiffMessage);
    return ok;
}

}  // namespace vdpgl
