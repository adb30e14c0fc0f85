#include "tests/support/off_screen.h"

Off_Screen::Off_Screen (int w, int h, uint32_t background, Window_Procedure procedure) : width (w), height (h) {
    Window_Description description = {};
    description.title              = "off-screen";
    description.width              = w;
    description.height             = h;
    description.background         = background;
    description.procedure          = procedure;
    description.off_screen         = 1;
    window                         = Window_Create (&description);
}

Off_Screen::~Off_Screen () { Window_Destroy (window); }

uint32_t Off_Screen::Pixel (int x, int y) const {
    Drawing  drawing = Drawing_Begin (window);
    uint32_t result  = Drawing_Pixel (drawing, x, y);
    Drawing_End (drawing);
    return result;
}

std::string Off_Screen::Rows (const std::map<uint32_t, char> &letters) const {
    std::string rows;
    Drawing     drawing = Drawing_Begin (window);
    for (int y = height - 1; y >= 0; y--) {
        for (int x = 0; x < width; x++) {
            auto letter = letters.find (Drawing_Pixel (drawing, x, y));
            rows += letter == letters.end () ? '?' : letter->second;
        }
        rows += '\n';
    }
    Drawing_End (drawing);
    return rows;
}

int Off_Screen::Count (uint32_t colour, int x, int y, int w, int h) const {
    int     count   = 0;
    Drawing drawing = Drawing_Begin (window);
    for (int row = y; row < y + h; row++)
        for (int column = x; column < x + w; column++) count += Drawing_Pixel (drawing, column, row) == colour;
    Drawing_End (drawing);
    return count;
}

int Off_Screen::Count (uint32_t colour) const { return Count (colour, 0, 0, width, height); }

static Call_Recorder *recorder;

static void Record (const Device::Call *call) {
    std::string text (call->text ? call->text : "", call->text ? static_cast<size_t> (call->length) : 0);
    recorder->calls.push_back ({call->kind, call->x, call->y, call->w, call->h, call->colour, call->font, text});
}

Call_Recorder::Call_Recorder () {
    recorder = this;
    Device::Watch (Record);
}

Call_Recorder::~Call_Recorder () {
    Device::Watch (nullptr);
    recorder = nullptr;
}

std::vector<Call_Recorder::Call> Call_Recorder::Of (Device::Call_Kind kind) const {
    std::vector<Call> result;
    for (const Call &call : calls)
        if (call.kind == kind) result.push_back (call);
    return result;
}

int Call_Recorder::Count (Device::Call_Kind kind) const { return static_cast<int> (Of (kind).size ()); }
