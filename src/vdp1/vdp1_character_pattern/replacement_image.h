#pragma once
// Replacement images: the pictures of a replacement texture set, read from
// TIFF or PNG files (told apart by their content, not their names) as 8-bit
// RGBA texels, top row first, colours not premultiplied.
//
// CReplacementImages keeps decoded pictures by path, with the file's
// modification time and size, so that a pattern rebuilt every frame does not
// read its file again, and a file saved over is read anew. Its memory is
// bounded: pictures not asked for the longest are let go first. It is
// guarded: the emulation thread asks, a preloading thread may fill.
#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vdpgl {

struct ReplacementPicture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> texels;  // width x height, bytes red, green, blue, alpha
};

// The largest side a replacement image may have.
inline constexpr int kLargestReplacementSide = 4096;

// False with `error` naming the file and the reason.
bool ReadReplacementImage(const std::string& path, ReplacementPicture& picture, std::string& error);

class CReplacementImages {
public:
    static constexpr uint64_t kDefaultBudget = uint64_t{64} << 20;

    CReplacementImages() = default;
    ~CReplacementImages() { StopPreload(); }
    CReplacementImages(const CReplacementImages&) = delete;
    CReplacementImages& operator=(const CReplacementImages&) = delete;

    // Reads these files into the kept pictures on a thread of its own, in
    // order, until the budget is nearly full, so that a replaced texture's
    // first appearance does not wait for its file. A preload running is
    // stopped first. Failures are left for Get to say.
    void Preload(std::vector<std::string> paths);
    // Stops a preload and waits for its thread.
    void StopPreload();

    // The picture of this file as it is now on disk: the kept one when the
    // file has not changed, else read anew. A file that cannot be read
    // gives the last good picture of it if there is one, else null; its
    // failure goes to `error` once per file and change (empty otherwise).
    std::shared_ptr<const ReplacementPicture> Get(const std::string& path, std::string& error);
    // Whether the file changed on disk since its picture was kept (false for
    // a file never read).
    bool Changed(const std::string& path);
    void SetBudget(uint64_t bytes);
    uint64_t Bytes() const;
    void Clear();

private:
    struct Stamp {
        int64_t modified = 0;
        uint64_t size = 0;
        bool operator==(const Stamp&) const = default;
    };
    struct Entry {
        std::shared_ptr<const ReplacementPicture> picture;
        Stamp stamp;
        std::list<std::string>::iterator use;
    };
    static bool StampOf(const std::string& path, Stamp& stamp);
    std::shared_ptr<const ReplacementPicture> Fetch(const std::string& path, std::string& error, bool report);
    void Keep(const std::string& path, std::shared_ptr<const ReplacementPicture> picture, const Stamp& stamp);
    void Trim();

    mutable std::mutex mutex;
    std::unordered_map<std::string, Entry> entries;
    std::list<std::string> useOrder;  // most recent first
    std::unordered_set<std::string> reported;  // "path@stamp" of failures said already
    uint64_t bytes = 0;
    uint64_t budget = kDefaultBudget;
    std::thread preloader;
    std::atomic<bool> stopPreload{false};
};

}  // namespace vdpgl
