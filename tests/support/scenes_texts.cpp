// Scenes of text fields, as the main window has one; the typed line is shown by no window of the program.
#include <stdio.h>

#include "tests/support/scenes.h"
#include "tools/keyboard.h"
#include "tools/texts.h"

// Ends with its scope. On the heap, for its slider's table.
class Scene_Field {
public:
    Scene_Field (Window window, int x, int y, int w, int h, int echo = 0) : text (new Text_Widget ()) {
        text->widget.name = "scene";
        text->widget.x    = static_cast<int16_t> (x);
        text->widget.y    = static_cast<int16_t> (y);
        text->widget.w    = static_cast<int16_t> (w);
        text->widget.h    = static_cast<int16_t> (h);
        text->size        = 9;
        text->echo        = echo;
        Texts::Init (text, window);
    }
    ~Scene_Field () {
        Texts::Exit (text);
        delete text;
    }
    Scene_Field (const Scene_Field &)            = delete;
    Scene_Field &operator= (const Scene_Field &) = delete;

    void Write_Warnings (int count) {
        char line[64];
        for (int i = 1; i <= count; i++) {
            snprintf (line, sizeof line, "\xF1\x05%d\xF0\x02 (0028,%04X) one line of many", i, i);
            Text::Write (text, line);
        }
    }

    Text_Widget *text;
};

// What the main window shows when it opens, in its size.
void Scene_Texts_Help (Window window) {
    Scene_Field field (window, 0, 0, 799, 151);
    Text::Write (field.text,
                 "\n----- ----- ----- Tagwright ----- ----- -----\n"
                 "\xF1\x02- Drag & Drop 1 DICOM file on this window to compare it with its modality description\n"
                 "\xF1\x02- Drag & Drop 2 DICOM files on this window  to compare them to one another\n\n"
                 "\xF1 Color code:\t Comparing with Modality:\t\t\t Comparing with another file:\n"
                 "\xF1\x06 green \x02\xF0\t\t\t not used \t\t\t\t\t\t\t skiped tags as defined in .ini\n"
                 "\xF1\x05 yellow\x02\xF0\t\t\t in the file but not in the modality \t\t not used\n"
                 "\xF1\x01 blue  \x02\xF0\t\t\t in the modality but not in the file \t\t no difference\n"
                 "\xF1\x02 black \x02\xF0\t\t\t in both the file and the modality \t\t different");
    Text::Draw (field.text);
}

void Scene_Texts_Codes (Window window) {
    static const char *const COLOURS[] = {"\x01 blue", "\x02 black",  "\x03 white",
                                          "\x04 red",  "\x05 yellow", "\x06 green"};
    Scene_Field              field (window, 8, 8, 400, 151);
    char                     line[128];
    for (const char *colour : COLOURS) {
        snprintf (line, sizeof line, "%s normal \xF1 bold \xF2 oblique \xF0 normal", colour);
        Text::Write (field.text, line);
    }
    Text::Write (field.text, "the next line is black and normal again");
    Text::Write (field.text, "UTF-8: 3 \xE2\x82\xAC, \xC3\x89ric \xE2\x80\x93 \xCE\xA9");
    Text::Write (field.text, "single bytes: 3 \x80, \xC9ric \x96");
    Text::Write (field.text, "a\ttab\tand\tanother one");
    Text::Draw (field.text);
}

void Scene_Texts_Scrolled (Window window) {
    const char *const LABELS[] = {"At the end", "Scrolled up", "At the start"};
    const int         LINES[]  = {0, -20, -1000};
    for (int i = 0; i < 3; i++) {
        Scene_Field field (window, 8 + 248 * i, 24, 240, 151);
        field.Write_Warnings (60);
        Texts::Scroll (field.text, LINES[i]);
        Text::Draw (field.text);
        Scene_Label (window, 8 + 248 * i, 6, LABELS[i]);
    }
}

void Scene_Texts_Slider (Window window) {
    const char *const LABELS[] = {"Empty", "All lines fit", "One line more", "All lines that are kept"};
    const int         LINES[]  = {0, 10, 11, 12000};
    for (int i = 0; i < 4; i++) {
        Scene_Field field (window, 8 + 188 * i, 24, 180, 151);
        field.Write_Warnings (LINES[i]);
        Text::Draw (field.text);
        Scene_Label (window, 8 + 188 * i, 6, LABELS[i]);
    }
}

void Scene_Texts_Typed (Window window) {
    const char *const LABELS[] = {"Empty", "Within the text", "Longer than the field", "Full"};
    const int         LINES[]  = {0, 3, 3, 30};
    const char *const TYPED[]  = {"", "Patient's Name", "a text that is longer than the field in which it is typed",
                                  "DX"};
    for (int i = 0; i < 4; i++) {
        Scene_Field field (window, 8 + 188 * i, 24, 180, 100, 1);
        field.Write_Warnings (LINES[i]);
        for (const char *c = TYPED[i]; *c; c++) Texts::Read_Echo (field.text, KEY_CHARACTER + *c);
        for (int k = 0; i == 1 && k < 4; k++) Texts::Read_Echo (field.text, KEY_MOVEMENT + WINDOW_KEY_LEFT);
        Text::Draw (field.text);
        Scene_Label (window, 8 + 188 * i, 6, LABELS[i]);
    }
}

// Too narrow for texts, for the slider, and lower than a line.
void Scene_Texts_Narrow (Window window) {
    const Widget_Rectangle PLACES[] = {{8, 8, 60, 100},   {76, 8, 40, 100},  {124, 8, 29, 100},
                                       {161, 8, 120, 40}, {289, 8, 120, 29}, {417, 8, 120, 12}};
    for (const Widget_Rectangle &place : PLACES) {
        Scene_Field field (window, place.x, place.y, place.w, place.h);
        field.Write_Warnings (20);
        Text::Draw (field.text);
    }
}
