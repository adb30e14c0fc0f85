// The command line comes as one text on Windows, where quotes keep a name with blanks together, and as words on Linux,
// where the shell has done that.
#include "app/command_line.h"

#include <string.h>

#include "app/start_up.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "util/tokenizer.h"

static const char *const MODULE = "command_line";

static const int TRACE_LEVEL_VERBOSE = 5;

// --- words -----------------------------------------------------------------

struct Words {
    const Program_Arguments *arguments;
    char                    *text; // Owned copy of the command line's text, cut by the tokenizer; or none.
    int                      next; // Of the arguments' words; of a text, 0 at its start.
};

// 1, or 0 after the strdup message.
static int Words_Open (Words *words, const Program_Arguments *arguments) {
    *words = {arguments, nullptr, 0};
    if (!arguments->text) return 1;
    words->text = Memory_Strdup (nullptr, HERE ("words->text", 0, 0), arguments->text);
    return words->text != nullptr;
}

static void Words_Close (Words *words) { Memory_Free (words->text); }

// The next word, valid until the words are closed, or none at the end.
static const char *Words_Next (Words *words) {
    if (words->text) {
        char *token = Tokenizer_Next (words->next++ ? nullptr : words->text, " \t\n");
        return token ? Text_Unquote (token) : nullptr;
    }
    return words->next < words->arguments->count ? words->arguments->words[words->next++] : nullptr;
}

// The word behind an option, as a number; 0 when there is none.
static int Words_Next_Integer (Words *words) {
    const char *word = Words_Next (words);
    return word ? Text_To_Integer (word) : 0;
}

// --- reading ---------------------------------------------------------------

// 1, or 0 after a memory message.
static int Add_Input (Command_Line *line, const char *name) {
    size_t slots = static_cast<size_t> (line->count) + 2;
    void  *array = Memory_Realloc (nullptr, HERE ("input_file", slots, 8), line->input_file, slots * sizeof (char *));
    if (!array) return 0;

    line->input_file              = static_cast<char **> (array);
    line->input_file[line->count] = Memory_Strdup (nullptr, HERE ("input_file[count]", 0, 0), name);
    if (!line->input_file[line->count]) return 0;
    line->input_file[++line->count] = nullptr;
    return 1;
}

// 1, or 0 when there is no such option. The second character decides.
static int Read_Option (Command_Line *line, Words *words, const char *option) {
    switch (option[1]) {
    case 't':
    case 'T': line->trace_level = Words_Next_Integer (words); return 1;
    case 'v':
    case 'V': line->trace_level = TRACE_LEVEL_VERBOSE; return 1;
    case 'x':
    case 'X':
        line->has_x = 1;
        line->x     = Words_Next_Integer (words);
        line->width = Words_Next_Integer (words);
        return 1;
    case 'y':
    case 'Y':
        line->has_y  = 1;
        line->y      = Words_Next_Integer (words);
        line->height = Words_Next_Integer (words);
        return 1;
    default: return 0;
    }
}

static int Read_Words (Command_Line *line, Words *words) {
    while (const char *word = Words_Next (words)) {
        if (word[0] != '-') {
            if (!Add_Input (line, word)) return 0;
        } else if (!Read_Option (line, words, word)) {
            fprintf (stderr, "unknown argument (%s)\n", word);
            Command_Line_Usage (stdout);
            return -1;
        }
    }
    return 1;
}

int Command_Line_Read (const Program_Arguments *arguments, Command_Line *line) {
    Words words;
    *line      = {};
    int result = Words_Open (&words, arguments) ? Read_Words (line, &words) : 0;
    Words_Close (&words);
    return result;
}

void Command_Line_Free (Command_Line *line) {
    for (int i = 0; line->input_file && line->input_file[i]; i++) Memory_Free (line->input_file[i]);
    Memory_Free (line->input_file);
    *line = {};
}

// --- usage -----------------------------------------------------------------

void Command_Line_Usage (FILE *output) {
    fprintf (output, "\n");
    fprintf (output, " ----- ----- %s (version: %s) ----- ----- \n", PROGRAM_NAME, PROGRAM_VERSION);
    fprintf (output, "\n");
    fprintf (output, "\n --- usage: ---\n");
    fprintf (output, " %s [-v] [-t *] [-x * *][-y * *] [input_1 input_2]", PROGRAM_NAME);
    fprintf (output, "\n");
    fprintf (output, "\n\t[-t *]     trace level (0 to 5)");
    fprintf (output, "\n\t[-v]       verbose (trace level = 5)");
    fprintf (output, "\n");
    fprintf (output, "\n\t[-x * *]   X position & dimentinon of window");
    fprintf (output, "\n\t[-y * *]   Y position & dimentinon of window");
    fprintf (output, "\n");
    fprintf (output, "\n\t[input_1 input_2]   2 files to compare (if not present");
    fprintf (output, "\n\t                    the program can be use as a drag&drop)");
    fprintf (output, "\n\n");
}
