// Writes the example files into a folder: make_examples examples
#include <stdio.h>

#include "tests/support/examples.h"

static bool Write (const std::string &name, const std::vector<unsigned char> &bytes) {
    FILE *file = fopen (name.c_str (), "wb");
    if (!file) return false;
    size_t written = fwrite (bytes.data (), 1, bytes.size (), file);
    return fclose (file) == 0 && written == bytes.size ();
}

int main (int count, char **words) {
    if (count != 2) {
        fprintf (stderr, "usage: make_examples FOLDER\n");
        return 2;
    }
    for (const Example &example : Examples_Make ()) {
        std::string name = std::string (words[1]) + "/" + example.name;
        if (!Write (name, example.bytes)) {
            fprintf (stderr, "can't write %s\n", name.c_str ());
            return 1;
        }
        printf ("%s (%zu bytes)\n", name.c_str (), example.bytes.size ());
    }
    return 0;
}
