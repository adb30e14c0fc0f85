// Splitting texts into words, a scan for each thread.
#pragma once

static const int TOKENIZER_SLOTS = 128;

// With a text: starts a new scan of it for the calling thread. With none: goes on. The next token (terminated in place,
// so text is changed) or none at the end. A token runs to the next delimiter outside double quotes; delimiters before it
// are skipped. The 129th thread takes over the first one's scan.
char *Tokenizer_Next (char *text, const char *delimiters);

// Removes a double quote at the start, and then one at the end, of a text of at most 1024 characters, in place. Returns
// text.
char *Text_Unquote (char *text);
