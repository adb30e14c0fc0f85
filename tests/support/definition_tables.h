// A tables directory that lives as long as a test, with every cache empty before and after.
#pragma once

#include <string>

#include "tables/definition_files.h"
#include "tables/modality.h"
#include "tests/support/temporary.h"

struct Definition_Tables {
    Temporary_Directory directory;

    Definition_Tables () { DICOM_Module_Dir_Set (directory.path.c_str ()); }
    ~Definition_Tables () {
        DICOM_Module_Override_Set (nullptr);
        DICOM_Module_Free (nullptr);
        DICOM_Module_Include_Free (nullptr);
        DICOM_Module_Private_Free (nullptr);
        DICOM_Module_Dir_Set ("");
    }

    void Module (const std::string &name, const std::string &text) { Write ("Module", name, text); }
    void Attributes (const std::string &name, const std::string &text) { Write ("Attributes", name, text); }
    void Include (const std::string &name, const std::string &text) { Write ("Include", name, text); }
    void Private (const std::string &name, const std::string &text) { Write ("Private", name, text); }

private:
    void Write (const std::string &kind, const std::string &name, const std::string &text) {
        directory.Write ("DICOM_" + kind + "_" + name + ".txt", text);
    }
};
