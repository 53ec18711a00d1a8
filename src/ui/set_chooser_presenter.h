#pragma once
// The display menu's "Load texture replacement set": a small chooser that
// lists the sets on disk with their descriptions and loads and activates the
// chosen one, as a host's ActivateTextureSet does (from the next frame).
#include <string>
#include <vector>

namespace vdpgl::ui {

inline constexpr const char* kSetChooserTitle = "Load texture replacement set";

struct SetRow {
    std::string name;
    std::string description;
};

class CSetChooserTarget {
public:
    virtual std::vector<SetRow> Sets() = 0;
    // False when the set cannot be loaded (its model says why).
    virtual bool Activate(const std::string& name) = 0;
    virtual std::string SetFolder() const = 0;

protected:
    ~CSetChooserTarget() = default;
};

class CSetChooserPresenter {
public:
    explicit CSetChooserPresenter(CSetChooserTarget& target) : target(target) { Refresh(); }

    void Refresh() { rows = target.Sets(); }
    const std::vector<SetRow>& Rows() const { return rows; }
    // What the chooser says instead of a list when there is no set.
    std::string EmptyText() const;
    // The row chosen: loaded and activated; false when it could not be.
    bool Choose(size_t row);

private:
    CSetChooserTarget& target;
    std::vector<SetRow> rows;
};

}  // namespace vdpgl::ui
