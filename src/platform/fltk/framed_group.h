#pragma once
// A labelled, engraved frame around a group of controls, as every dialog
// draws its groups. The caller adds the children and ends the group.
#include <FL/Fl_Group.H>

namespace vdpgl::platform {

inline Fl_Group* FramedGroup(int x, int y, int w, int h, const char* label) {
    auto* group = new Fl_Group(x, y, w, h, label);
    group->box(FL_ENGRAVED_FRAME);
    group->align(FL_ALIGN_TOP_LEFT | FL_ALIGN_INSIDE);
    return group;
}

}  // namespace vdpgl::platform
