#pragma once
// The texts the plug-in gives its host and shows in its about box.
namespace vdpgl {

inline constexpr char kPluginName[] = "VDP OpenGL plugin v2.0 (debug)";
inline constexpr char kPluginDescription[] =
    "This plugin emulates the VDP1 and VDP2 processors using OpenGL. It allows you to rip the textures from a "
    "game. You can also provide replacement textures for a game. See the readme.txt file for more details";
inline constexpr char kAboutText[] = "OpenGL VDP plugin Ver 2.0";
inline constexpr char kAboutTitle[] = "About";
inline constexpr char kReplacementFolderName[] = "replacement_texture_set";

}  // namespace vdpgl
