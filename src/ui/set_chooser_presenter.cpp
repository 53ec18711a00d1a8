#include "ui/set_chooser_presenter.h"

namespace vdpgl::ui {

std::string CSetChooserPresenter::EmptyText() const {
    return "There is no texture replacement set yet.\n\nA set is a folder in\n" + target.SetFolder() +
           "\nholding <set>.ini and the set's images (see \"Texture packs\" in the README).";
}

bool CSetChooserPresenter::Choose(size_t row) { return row < rows.size() && target.Activate(rows[row].name); }

}  // namespace vdpgl::ui
