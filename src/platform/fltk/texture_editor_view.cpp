// The texture replacement editor as an FLTK dialog over its presenter: the
// cached patterns with their preview, the sets, and the current set's
// replacement images with their previews. The view forwards clicks, answers
// the presenter's questions with FLTK's file chooser or a small form, and
// draws what the presenter holds.
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Hold_Browser.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Multiline_Input.H>
#include <FL/Fl_Multiline_Output.H>
#include <FL/Fl_Native_File_Chooser.H>
#include <FL/Fl_Return_Button.H>
#include <FL/Fl_Window.H>
#include <FL/fl_draw.H>

#include <algorithm>
#include <vector>

#include "platform/dialogs.h"
#include "platform/fltk/framed_group.h"
#include "platform/ui_thread.h"
#include "ui/texture_editor_presenter.h"

namespace vdpgl::platform {

namespace {

using Picture = const ui::EditorPicture& (ui::CTextureEditorPresenter::*)() const;
using Place = ui::PicturePlacement (ui::CTextureEditorPresenter::*)() const;

// A preview: the presenter's picture drawn nearest-neighbour at its placement
// (relative to the presenter's box, which this widget stands for).
class CPreview final : public Fl_Widget {
public:
    CPreview(const ui::PreviewBox& box, int x, int y, Fl_Color background, ui::CTextureEditorPresenter*& presenter,
             Picture picture, Place place)
        : Fl_Widget(x, y, box.width, box.height), box(box), background(background), presenter(presenter),
          picture(picture), place(place) {}
    void draw() override {
        fl_rectf(x(), y(), w(), h(), background);
        if (!presenter) return;
        const ui::EditorPicture& p = (presenter->*picture)();
        const ui::PicturePlacement at = (presenter->*place)();
        if (p.width <= 0 || at.width <= 0 || at.height <= 0) return;
        scaled.resize(static_cast<size_t>(at.width) * static_cast<size_t>(at.height));
        for (int ty = 0; ty < at.height; ++ty) {
            const int sy = std::min(p.height - 1, ty * p.height / at.height);
            for (int tx = 0; tx < at.width; ++tx)
                scaled[static_cast<size_t>(ty) * at.width + tx] =
                    p.texels[static_cast<size_t>(sy) * p.width + std::min(p.width - 1, tx * p.width / at.width)];
        }
        fl_draw_image(reinterpret_cast<const uchar*>(scaled.data()), x() + at.x - box.x, y() + at.y - box.y, at.width,
                      at.height, 4);
    }

private:
    ui::PreviewBox box;
    Fl_Color background;
    ui::CTextureEditorPresenter*& presenter;
    Picture picture;
    Place place;
    std::vector<uint32_t> scaled;
};

class CTextureEditorView final : public Fl_Window {
public:
    CTextureEditorView(ui::CTextureEditorTarget& target, std::atomic<void*>& handle)
        : Fl_Window(730, 690, ui::kEditorTitle), presenter(target), handle(handle) {
        self = &presenter;
        FramedGroup(5, 5, 720, 290, "Textures in cache")->end();
        patterns = new Fl_Hold_Browser(10, 25, 150, 140);
        patterns->textsize(11);
        patterns->callback([](Fl_Widget* w, void*) { Of(w)->OnPatternRow(); });
        Button(10, 170, 72, 25, "Refresh", nullptr, &ui::CTextureEditorPresenter::Refresh);
        Button(88, 170, 72, 25, "Dump", "Save the selected texture as a TIFF file", &ui::CTextureEditorPresenter::Dump);
        zoom = new Fl_Check_Button(10, 197, 150, 22, "Zoom texture");
        zoom->callback([](Fl_Widget* w, void*) { Of(w)->OnZoom(); });
        information = new Fl_Box(10, 220, 150, 72);
        information->align(FL_ALIGN_TOP_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
        information->labelsize(11);
        auto* frame = new Fl_Box(168, 23, 508, 259);
        frame->box(FL_BORDER_FRAME);
        frame->color(FL_BLACK);
        patternPreview = new CPreview(ui::kPatternBox, 170, 25, FL_WHITE, self, &ui::CTextureEditorPresenter::PatternPicture,
                                      &ui::CTextureEditorPresenter::PatternPlacement);

        FramedGroup(5, 300, 720, 110, "Texture set management")->end();
        sets = new Fl_Hold_Browser(10, 320, 200, 85);
        sets->callback([](Fl_Widget* w, void*) { Of(w)->OnSetRow(); });
        description = new Fl_Multiline_Output(215, 320, 250, 85);
        description->tooltip("The description of the set selected in the list");
        const struct { const ui::EditorButton& b; void (ui::CTextureEditorPresenter::*command)(); } setButtons[] = {
            {ui::kLoadSetButton, &ui::CTextureEditorPresenter::LoadSet},
            {ui::kNewSetButton, &ui::CTextureEditorPresenter::NewSet},
            {ui::kSaveSetButton, &ui::CTextureEditorPresenter::SaveSet},
            {ui::kSaveSetAsButton, &ui::CTextureEditorPresenter::SaveSetAs},
            {ui::kUnloadButton, &ui::CTextureEditorPresenter::UnloadSet},
            {ui::kActivateButton, &ui::CTextureEditorPresenter::ActivateSet}};
        int i = 0;
        for (const auto& s : setButtons) {
            Button(472 + (i % 2) * 125, 320 + (i / 2) * 29, 120, 25, s.b.label, s.b.tooltip, s.command);
            ++i;
        }

        associations = FramedGroup(5, 415, 720, 270, "");
        associations->end();
        entries = new Fl_Hold_Browser(10, 435, 200, 160);
        entries->callback([](Fl_Widget* w, void*) { Of(w)->OnEntryRow(); });
        Button(10, 600, 98, 25, "Add texture", nullptr, &ui::CTextureEditorPresenter::AddImage);
        Button(112, 600, 98, 25, "Delete texture", nullptr, &ui::CTextureEditorPresenter::DeleteImage);
        Button(10, 629, 200, 25, ui::kAssociateButton.label, ui::kAssociateButton.tooltip,
               &ui::CTextureEditorPresenter::Associate);
        Button(10, 658, 285, 25, ui::kClearButton.label, ui::kClearButton.tooltip,
               &ui::CTextureEditorPresenter::ClearAssociations);
        crc = new Fl_Box(215, 435, 80, 80);
        crc->align(FL_ALIGN_TOP_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
        crc->labelsize(11);
        new Fl_Box(300, 435, 220, 18, "Replacement texture");
        new Fl_Box(535, 435, 180, 18, "Replaced texture");
        const Fl_Color pale = fl_rgb_color(225, 255, 255);
        replacementPreview = new CPreview(ui::kReplacementBox, 300, 455, pale, self,
                                          &ui::CTextureEditorPresenter::ReplacementPicture,
                                          &ui::CTextureEditorPresenter::ReplacementPlacement);
        replacedPreview = new CPreview(ui::kReplacedBox, 535, 455, pale, self,
                                       &ui::CTextureEditorPresenter::ReplacedPicture,
                                       &ui::CTextureEditorPresenter::ReplacedPlacement);
        replacedText = new Fl_Box(535, 455, 180, 223);
        replacedText->align(FL_ALIGN_CENTER | FL_ALIGN_INSIDE);
        end();
        callback([](Fl_Widget* w, void*) { w->hide(); });
        Sync();
        handle.store(static_cast<Fl_Window*>(this));
    }

    ~CTextureEditorView() override {
        self = nullptr;
        handle.store(nullptr);
    }
    void hide() override {
        Fl_Window::hide();
        Fl::delete_widget(this);
    }

private:
    static CTextureEditorView* Of(Fl_Widget* w) { return static_cast<CTextureEditorView*>(w->window()); }

    void Button(int x, int y, int w, int h, const char* label, const char* tip, void (ui::CTextureEditorPresenter::*command)()) {
        auto* b = new Fl_Button(x, y, w, h, label);
        if (tip) b->tooltip(tip);
        if (w < 110) b->labelsize(12);
        commands.push_back(command);
        b->callback(
            [](Fl_Widget* w, void* index) {
                auto* view = Of(w);
                (view->presenter.*view->commands[reinterpret_cast<size_t>(index)])();
                view->Answer();
                view->Sync();
            },
            reinterpret_cast<void*>(commands.size() - 1));
    }

    void OnPatternRow() { presenter.SelectPattern(patterns->value() - 1), Sync(); }
    void OnSetRow() { presenter.SelectSet(sets->value() - 1), Sync(); }
    void OnEntryRow() { presenter.SelectAssociation(entries->value() - 1), Sync(); }
    void OnZoom() { presenter.ToggleZoom(), Sync(); }

    // The presenter's question, if it has one, answered here.
    void Answer() {
        const ui::EditorRequest request = presenter.Request();
        if (request.kind == ui::EditorRequest::kNone) return;
        if (request.kind == ui::EditorRequest::kSetDetails) {
            AskSetDetails(request);
            return;
        }
        Fl_Native_File_Chooser chooser(request.kind == ui::EditorRequest::kOpenFile
                                           ? Fl_Native_File_Chooser::BROWSE_FILE
                                           : Fl_Native_File_Chooser::BROWSE_SAVE_FILE);
        chooser.title(request.title.c_str());
        chooser.filter(request.filter.c_str());
        if (chooser.show() == 0 && chooser.filename() && *chooser.filename())
            presenter.AnswerFile(chooser.filename());
        else
            presenter.CancelRequest();
    }

    void AskSetDetails(const ui::EditorRequest& request) {
        Fl_Window form(360, 230, request.title.c_str());
        Fl_Input name(10, 25, 340, 25, "Enter set name:");
        name.align(FL_ALIGN_TOP_LEFT);
        name.value(request.name.c_str());
        Fl_Multiline_Input text(10, 75, 340, 110, "Enter description for this set:");
        text.align(FL_ALIGN_TOP_LEFT);
        text.value(request.description.c_str());
        Fl_Return_Button ok(170, 195, 85, 25, "OK");
        Fl_Button cancel(265, 195, 85, 25, "Cancel");
        int answer = 0;
        ok.callback([](Fl_Widget*, void* a) { *static_cast<int*>(a) = 1; }, &answer);
        cancel.callback([](Fl_Widget*, void* a) { *static_cast<int*>(a) = 2; }, &answer);
        form.callback([](Fl_Widget*, void* a) { *static_cast<int*>(a) = 2; }, &answer);
        form.end();
        form.set_modal();
        form.show();
        while (answer == 0 && form.shown() && !UiThreadStopRequested()) Fl::wait(0.1);
        if (answer == 1)
            presenter.AnswerSetDetails(name.value(), text.value());
        else
            presenter.CancelRequest();
    }

    static void Fill(Fl_Hold_Browser* list, const std::vector<std::string>& rows, int selected) {
        list->clear();
        for (const std::string& row : rows) list->add(row.c_str());
        if (selected >= 0) list->value(selected + 1);
    }

    void Sync() {
        Fill(patterns, presenter.PatternRows(), presenter.SelectedPattern());
        Fill(sets, presenter.SetRows(), presenter.SelectedSet());
        Fill(entries, presenter.AssociationRows(), presenter.SelectedAssociation());
        zoom->value(ui::CTextureEditorPresenter::Zoom());
        information->copy_label(presenter.Information().c_str());
        description->value(presenter.SetDescription().c_str());
        associations->copy_label(presenter.GroupTitle().c_str());
        crc->copy_label(presenter.CrcText().c_str());
        replacedText->copy_label(presenter.ReplacedText().c_str());
        redraw();
    }

    ui::CTextureEditorPresenter presenter;
    ui::CTextureEditorPresenter* self = nullptr;  // the previews' way to it
    std::atomic<void*>& handle;
    std::vector<void (ui::CTextureEditorPresenter::*)()> commands;
    Fl_Hold_Browser *patterns = nullptr, *sets = nullptr, *entries = nullptr;
    Fl_Check_Button* zoom = nullptr;
    Fl_Box *information = nullptr, *crc = nullptr, *replacedText = nullptr;
    Fl_Multiline_Output* description = nullptr;
    Fl_Group* associations = nullptr;
    CPreview *patternPreview = nullptr, *replacementPreview = nullptr, *replacedPreview = nullptr;
};

}  // namespace

bool OpenTextureEditor(ui::CTextureEditorTarget& target, std::atomic<void*>& handle) {
    return RunOnUiThread([&target, &handle] {
        if (auto* open = static_cast<Fl_Window*>(handle.load())) {
            open->show();
            return;
        }
        (new CTextureEditorView(target, handle))->show();
    });
}

void CloseTextureEditor(std::atomic<void*>& handle) {
    RunOnUiThread([&handle] {
        if (auto* open = static_cast<Fl_Window*>(handle.load())) open->hide();
    });
}

}  // namespace vdpgl::platform
