// vdpgl-scenes: writes the demo traces, each a scene programmed the way a
// game programs the video chips, for vdpgl-play to replay.
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "background_scene.h"
#include "rotation_scene.h"
#include "scene_builder.h"
#include "sprite_showcase.h"
#include "stress_scenes.h"

namespace {

using vdpgl::scenes::CSceneBuilder;

struct Scene {
    const char* name;  // the trace is <name>.trace
    void (*write)(CSceneBuilder&);
};

constexpr Scene kScenes[] = {
    {"sprites", vdpgl::scenes::WriteSpriteShowcase},
    {"backgrounds", vdpgl::scenes::WriteBackgroundScene},
    {"rotation", vdpgl::scenes::WriteRotationScene},
    // Heavy loads for the frame-time benchmark.
    {"stress-sprites", vdpgl::scenes::stress::WriteStressSprites},
    {"stress-planes", vdpgl::scenes::stress::WriteStressPlanes},
    {"stress-rotation", vdpgl::scenes::stress::WriteStressRotation},
    {"stress-bitmap", vdpgl::scenes::stress::WriteStressBitmap},
    {"stress-all", vdpgl::scenes::stress::WriteStressAll},
};

const Scene* FindScene(const char* name) {
    for (const Scene& scene : kScenes)
        if (std::strcmp(scene.name, name) == 0) return &scene;
    return nullptr;
}

int Usage(std::FILE* to) {
    std::fprintf(to,
                 "usage: vdpgl-scenes [--out DIR] [NAME...]\n"
                 "Writes the scenes named (all of them without a name) as NAME.trace into DIR\n"
                 "(default: the current directory). The scenes:");
    for (const Scene& scene : kScenes) std::fprintf(to, " %s", scene.name);
    std::fprintf(to, "\n");
    return to == stdout ? 0 : 2;
}

bool WriteScene(const Scene& scene, const std::filesystem::path& folder) {
    const std::string path = (folder / (std::string(scene.name) + ".trace")).string();
    CSceneBuilder builder;
    if (!builder.Open(path)) {
        std::fprintf(stderr, "vdpgl-scenes: %s\n", builder.Error().c_str());
        return false;
    }
    try {
        builder.Begin();
        scene.write(builder);
    } catch (const std::exception& e) {
        // A scene cut short is no demo: its file goes.
        builder.End();
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        std::fprintf(stderr, "vdpgl-scenes: %s: %s\n", path.c_str(), e.what());
        return false;
    }
    const uint32_t frames = builder.FramesWritten();
    if (!builder.End()) {
        std::fprintf(stderr, "vdpgl-scenes: %s\n", builder.Error().c_str());
        return false;
    }
    std::error_code ec;
    const auto bytes = std::filesystem::file_size(path, ec);
    std::printf("%s: %u frames, %llu bytes\n", path.c_str(), frames, static_cast<unsigned long long>(ec ? 0 : bytes));
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::filesystem::path folder = ".";
    std::vector<const Scene*> chosen;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--out") == 0) {
            if (i + 1 == argc) {
                std::fprintf(stderr, "vdpgl-scenes: --out needs a folder\n");
                return Usage(stderr);
            }
            folder = argv[++i];
        } else if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            return Usage(stdout);
        } else if (argv[i][0] == '-') {
            std::fprintf(stderr, "vdpgl-scenes: unexpected argument \"%s\"\n", argv[i]);
            return Usage(stderr);
        } else if (const Scene* scene = FindScene(argv[i])) {
            chosen.push_back(scene);
        } else {
            std::fprintf(stderr, "vdpgl-scenes: no scene is named \"%s\"\n", argv[i]);
            return Usage(stderr);
        }
    }
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (ec) {
        std::fprintf(stderr, "vdpgl-scenes: cannot create the folder \"%s\": %s\n", folder.string().c_str(),
                     ec.message().c_str());
        return 1;
    }
    int failures = 0;
    if (chosen.empty())
        for (const Scene& scene : kScenes) chosen.push_back(&scene);
    for (const Scene* scene : chosen)
        if (!WriteScene(*scene, folder)) ++failures;
    return failures == 0 ? 0 : 1;
}
