#include "tests/view/shown.h"

#include <algorithm>

#include "compare/attribute_comparison.h"
#include "compare/comparison_run.h"
#include "tools/icon.h"
#include "util/memory.h"

static const char *const MODULE = "shown";

// --- window ----------------------------------------------------------------

static const int S = 8;

static int16_t To_16 (int number) { return static_cast<int16_t> (number); }

static void Put (Widget *widget, int x, int y, int w, int h) {
    widget->x = To_16 (x);
    widget->y = To_16 (y);
    widget->w = To_16 (w);
    widget->h = To_16 (h);
}

static void Put_Box (Box_Widget *box, Window window, int x, int y, int w, int h) {
    Put (&box->widget, x, y, w, h);
    for (int i = 0; i < 4; i++) box->widget.colour[i] = VIEW_PANE_COLOUR[i];
    box->widget.state = WIDGET_FIXED;
    Boxs::Init (box, window);
}

static void Put_Button (Button_Widget *button, Window window, int x, int y, int w, int h) {
    Put (&button->widget, x, y, w, h);
    for (int i = 0; i < 3; i++) button->widget.colour[i] = 170;
    button->widget.state = WIDGET_FIXED;
    Buttons::Init (button, window);
}

static void Put_Slider (Slider *slider, int hidden, int x, int y, int w, int h) {
    Put (&slider->widget, x, y, w, h);
    slider->widget.state = hidden ? uint32_t {WIDGET_HIDDEN} : 0;
}

static void Put_Horizontal (Slider *slider, const Box_Widget *box, int room) {
    const Widget &w = box->widget;
    Put_Slider (slider, w.w < 30 || w.h < 30, w.x + WIDGET_MARGIN, w.y + WIDGET_MARGIN, w.w - 2 * WIDGET_MARGIN - room,
                WIDGET_SLIDER_THICKNESS);
}

void Shown_Layout (Window window, int width, int height) {
    Result_View &r = Result;
    const int    H = height - r.strip_height;
    Put_Box (&r.frame, window, 0, 0, width - 1, height - 1);
    Put_Box (&r.tree, window, 0, 0, r.left, H);
    Put_Box (&r.description, window, r.left + S, 0, r.right - r.left - S, H);
    Put_Box (&r.value, window, r.right + S, 0, width - 1 - r.right - S, H);
    Put (&r.text.widget, 0, H + 8, width - 1, std::max (0, std::min (151, r.strip_height - 9)));
    Texts::Init (&r.text, window);
    Put_Button (&r.strip_separator, window, -4, H, width + 8, S);
    Put_Button (&r.left_separator, window, r.left, -4, S, H + 7);
    Put_Button (&r.right_separator, window, r.right, -4, S, H + 7);
    Put_Horizontal (&r.tree_slider, &r.tree, WIDGET_SLIDER_THICKNESS + WIDGET_MARGIN);
    Put_Horizontal (&r.description_slider, &r.description, 0);
    Put_Horizontal (&r.value_slider, &r.value, 0);
    const Widget &t = r.tree.widget;
    Put_Slider (&r.vertical, t.w < 30 || t.h < 30, t.x + t.w - WIDGET_MARGIN - WIDGET_SLIDER_THICKNESS,
                t.y + VIEW_STRIP, WIDGET_SLIDER_THICKNESS, t.h - VIEW_STRIP - WIDGET_MARGIN);
    View::SetScrollRanges (&r.tree, &r.description, &r.value, &r.vertical, &r.tree_slider, &r.description_slider,
                           &r.value_slider);
}

static int Procedure (Window window, const Window_Event *event) {
    switch (event->kind) {
    case WINDOW_MOUSE_MOVE:
        Device::Pointer_Set (event->x, event->y);
        View::OnMouseMove (window, Device::ButtonDown (1));
        return 1;
    case WINDOW_BUTTON_DOWN:
        Device::Pointer_Set (event->x, event->y);
        View::OnButton (window, MOUSE_PRESSED);
        return 1;
    case WINDOW_BUTTON_UP:
        Device::Pointer_Set (event->x, event->y);
        View::OnButton (window, MOUSE_MOVED);
        return 1;
    default: return 0;
    }
}

Shown::Shown (int width, int height) {
    Window_Description description = {};
    description.title              = "Result";
    description.width              = width;
    description.height             = height;
    description.procedure          = Procedure;
    description.off_screen         = 1;
    window                         = Window_Create (&description);

    static const std::string icons = std::string (TAGWRIGHT_SOURCE_DIR) + "/";
    Icon_Install_Path_Set (icons.c_str ());
    Result.strip_height = 160;
    Result.left         = 620;
    Result.right        = 900;
    View::Layout_Set (Shown_Layout);
    Shown_Layout (window, width, height);
}

Shown::~Shown () {
    Rows_Free ();
    View::Exit ();
    View::Layout_Set (nullptr);
    Result = {};
    Names (nullptr, nullptr);
    Icon_Free_All ();
    Window_Destroy (window);
}

// --- records ---------------------------------------------------------------

char *Shown::Text (const std::string &text) {
    texts.push_back (text);
    return texts.back ().data ();
}

Attribute *Shown::Record (uint16_t group, uint16_t element, uint16_t code, const char *vr, int length) {
    records.push_back ({});
    Attribute *record = &records.back ();
    record->group     = group;
    record->element   = element;
    record->flags     = code;
    record->vr_file   = *vr ? Code (vr[0], vr[1]) : static_cast<uint16_t> (0);
    record->length    = length;
    return record;
}

Attribute *Shown::List (const std::vector<Attribute *> &list) {
    for (size_t i = 1; i < list.size (); i++) list[i - 1]->next = list[i];
    return list.empty () ? nullptr : list[0];
}

Attribute *Shown::Sequence (uint16_t group, uint16_t element, std::vector<Attribute *> lists, uint16_t code) {
    Attribute *record = Record (group, element, code, "SQ", LENGTH_UNDEFINED);
    items.push_back (std::move (lists));
    record->nb_item = static_cast<int32_t> (items.back ().size ());
    record->item    = items.back ().data ();
    return record;
}

void Shown::Build (Attribute *list, const char *title) {
    Rows_Build (window, list);
    Rows_Title (window, title);
    Rows_Layout ();
    View::ResetView (window);
}

void Shown::Many (int count) {
    std::vector<Attribute *> list;
    for (int i = 0; i < count; i++) list.push_back (Record (0x0009, static_cast<uint16_t> (i)));
    Build (List (list));
}

void Shown::Unfold_All () {
    for (int i = 0; i < Rows.count; i++)
        if (Rows.rows[i].kind & ROW_FOLDED)
            Rows.rows[i].kind = static_cast<uint16_t> (Rows.rows[i].kind ^ (ROW_FOLDED | ROW_UNFOLDED));
    Rows_Layout ();
    View::ResetView (window);
}

static void Name (char **place, const char *name) {
    Memory_Free (*place);
    *place = name ? Memory_Strdup (nullptr, HERE ("name", 0, 0), name) : nullptr;
}

void Shown::Names (const char *a, const char *b) {
    Name (&Comparison_Last.Name_File_A, a);
    Name (&Comparison_Last.Name_File_B, b);
}

// --- mouse and picture -----------------------------------------------------

void Shown::Place (int left, int right, int strip_height) {
    int width, height;
    Window_Client_Size (window, &width, &height);
    Result.left         = left;
    Result.right        = right;
    Result.strip_height = strip_height;
    Shown_Layout (window, width, height);
    View::ResetView (window);
}

void Shown::Scroll (float value) {
    Result.vertical.value = value;
    View::Redraw_All ();
}

static void Send (Window window, Window_Event_Kind kind, int x, int y) {
    Window_Event event = {};
    event.kind         = kind;
    event.x            = x;
    event.y            = y;
    event.button       = WINDOW_BUTTON_LEFT;
    Window_Send (window, &event);
}

void Shown::Move (int x, int y, int) { Send (window, WINDOW_MOUSE_MOVE, x, y); }
void Shown::Press (int x, int y) { Send (window, WINDOW_BUTTON_DOWN, x, y); }
void Shown::Release (int x, int y) { Send (window, WINDOW_BUTTON_UP, x, y); }

void Shown::Click (int x, int y) {
    Press (x, y);
    Release (x, y);
}

uint32_t Shown::Pixel (int x, int y) const {
    Drawing  drawing = Drawing_Begin (window);
    uint32_t pixel   = Drawing_Pixel (drawing, x, y);
    Drawing_End (drawing);
    return pixel;
}

std::vector<uint32_t> Shown::Picture () const {
    std::vector<uint32_t> pixels;
    int                   width, height;
    Window_Client_Size (window, &width, &height);
    Drawing drawing = Drawing_Begin (window);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) pixels.push_back (Drawing_Pixel (drawing, x, y));
    Drawing_End (drawing);
    return pixels;
}

int Shown::Band (int line) const {
    const Widget &tree = Result.tree.widget;
    return static_cast<int> (Result.vertical.value) - 6 + tree.h + tree.y - 36 - 18 * line;
}

int Shown::Width (Drawing_Font font, const std::string &text) const {
    Device::Begin (window, nullptr, "Width");
    int width = Device::Run_Width (font, text.data (), static_cast<int> (text.size ()));
    Device::End ();
    return width;
}

// --- what was drawn --------------------------------------------------------

static Watched *watched;

static void Keep (const Device::Call *call) {
    watched->calls.push_back ({call->kind, call->x, call->y, call->w, call->h, call->colour, call->font,
                               call->kind == Device::CALL_TEXT
                                   ? std::string (call->text, static_cast<size_t> (call->length))
                                   : std::string ()});
}

Watched::Watched () {
    watched = this;
    Device::Watch (Keep);
}

Watched::~Watched () { Device::Watch (nullptr); }

const Drawn *Watched::Text (const std::string &text) const {
    for (const Drawn &call : calls)
        if (call.kind == Device::CALL_TEXT && call.text == text) return &call;
    return nullptr;
}

int Watched::Count (const std::string &text) const {
    int count = 0;
    for (const Drawn &call : calls) count += call.kind == Device::CALL_TEXT && call.text == text;
    return count;
}

int Watched::Count (Device::Call_Kind kind) const {
    int count = 0;
    for (const Drawn &call : calls) count += call.kind == kind;
    return count;
}

int Watched::Lines (int x1, int y1, int x2, int y2, uint32_t colour) const {
    int count = 0;
    for (const Drawn &call : calls)
        count += call.kind == Device::CALL_LINE && call.x == x1 && call.y == y1 && call.w == x2 && call.h == y2 &&
                 call.colour == colour;
    return count;
}

std::vector<std::string> Watched::Texts () const {
    std::vector<std::string> texts;
    for (const Drawn &call : calls)
        if (call.kind == Device::CALL_TEXT && call.text.find_first_not_of (' ') != std::string::npos)
            texts.push_back (call.text);
    return texts;
}

// --- an example ------------------------------------------------------------

void Example_Build (Shown *s) {
    struct Entry {
        uint16_t    group, element, code;
        const char *vr;
        int         length;
        const char *type, *value, *description;
    };
    auto Make = [s] (const Entry &e) {
        Attribute *record   = s->Record (e.group, e.element, e.code, e.vr, e.length);
        record->type        = *e.type ? Code (e.type[0], e.type[1]) : static_cast<uint16_t> (0);
        record->data        = *e.value ? reinterpret_cast<uint8_t *> (s->Text (e.value)) : nullptr;
        record->description = *e.description ? s->Text (e.description) : nullptr;
        return record;
    };
    // clang-format off
    Attribute *meta      = Make ({0x0002, 0x0010, DIFFERENCE_NONE,      "UI", 18, "1 ", "         \"1.2.840.10008.1.2\" /vs/ \"1.2.840.10008.1.2\"", "Transfer Syntax UID"});
    Attribute *skipped   = Make ({0x0008, 0x0005, DIFFERENCE_SKIPPED,   "CS", 10, "1C", "                \"ISO_IR 100\" /vs/ \"ISO_IR 192\"", "Specific Character Set"});
    Attribute *file_only = Make ({0x0008, 0x0016, DIFFERENCE_FILE_ONLY, "UI", 26, "1 ", "", "SOP Class UID"});
    Attribute *bytes     = Make ({0x0008, 0x0018, DIFFERENCE_BYTES,     "UI", 18, "1 ", "       \"1.2.999.7.1.3.101\" /vs/ \"1.2.999.7.1.3.102\"", "SOP Instance UID"});
    Attribute *length    = Make ({0x0008, 0x0033, DIFFERENCE_LENGTH,    "TM", 13, "2C", "                    \"101530\" /vs/ \"101530.250000\"", "Content Time"});
    Attribute *class_uid = Make ({0x0008, 0x1150, DIFFERENCE_NONE,      "UI", 26, "1 ", "", "Referenced SOP Class UID"});
    Attribute *vr        = Make ({0x0008, 0x1155, DIFFERENCE_VR,        "UI", 16, "1 ", "", "Referenced SOP Instance UID"});
    Attribute *inner     = Make ({0x0008, 0x0100, DIFFERENCE_ONLY_A,    "SH", 8,  "1 ", "                  \"113100\" /vs/ (no tag)", "Code Value"});
    Attribute *inner_b   = Make ({0x0008, 0x0104, DIFFERENCE_NONE,      "LO", 12, "3 ", "", "Code Meaning"});
    Attribute *only_b    = Make ({0x0010, 0x0010, DIFFERENCE_ONLY_B,    "PN", 10, "2 ", "                  (no tag) /vs/ \"Doe^John\"", "Patient's Name"});
    Attribute *both      = Make ({0x0010, 0x1010, DIFFERENCE_BYTES | DIFFERENCE_VR, "AS", 4, "3 ", "", "Patient's Age"});
    Attribute *explicit_ = Make ({0x0010, 0x4000, DIFFERENCE_EXPLICIT_IMPLICIT, "LT", 12, "3 ", "              \"water, 20 cm\" /vs/ \"water, 20 cm\"", "Patient Comments"});
    Attribute *implicit_ = Make ({0x0020, 0x4000, DIFFERENCE_IMPLICIT_EXPLICIT, "LT", 16, "3 ", "", "Image Comments"});
    Attribute *unknown   = Make ({0x0029, 0x1010, DIFFERENCE_NONE,      "",   4,  "",   "", ""});
    Attribute *used      = Make ({0x7FE0, 0x0010, DIFFERENCE_FILE_AND_DEFINITION, "OW", 8192, "1C", "", "Pixel Data"});
    Attribute *include   = Make ({0xFFFF, 0xFFFF, DIFFERENCE_NONE,      "",   0,  "",   "", "CT Image Module"});
    // clang-format on
    bytes->diff_a         = 1;
    length->diff_a        = 6;
    length->diff_b        = 13;
    vr->diff_a            = VR_UI;
    vr->diff_b            = VR_UN;
    Attribute *nested     = s->Sequence (0x0040, 0xA170, {s->List ({inner, inner_b})});
    nested->description   = s->Text ("Purpose of Reference Code Sequence");
    nested->type          = Code ('3', ' ');
    Attribute *item_2     = Make ({0x0008, 0x1155, DIFFERENCE_NONE, "UI", 16, "1 ", "", "Referenced SOP Instance UID"});
    Attribute *sequence   = s->Sequence (0x0008, 0x1140, {s->List ({class_uid, vr, nested}), s->List ({item_2})});
    sequence->description = s->Text ("Referenced Image Sequence");
    sequence->type        = Code ('1', 'C');
    s->Names ("/data/phantom/ct_a.dcm", "/data/phantom/ct_b.dcm");
    s->Build (s->List ({meta, skipped, file_only, bytes, length, sequence, only_b, both, explicit_, implicit_, unknown,
                        used, include}),
              "ct_a.dcm /vs/ ct_b.dcm");
}
