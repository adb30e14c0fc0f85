// A file with a fault of every VR, read through all phases, and its listing against that of the clean file: byte for byte,
// in both byte orders and with and without VRs. The expected listing is written out, so that a change of any rule shows.
#include <gtest/gtest.h>

#include <algorithm>

#include "attribute/listing.h"
#include "compare/comparison_run.h"
#include "compare/file_reader.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"

static const std::string NUL (1, '\0');

struct Fault {
    uint16_t    group, element;
    const char *vr;
    std::string faulty;  // Value as an encoder might write it. Binary values: bytes of the little-endian stream.
    std::string cleaned; // What is left of it; "" when it is discarded.
    int         unit;    // Bytes of one number, 0 for text.
};

// In tag order. OF is left out: an explicit OF has a 32-bit length, which the reader takes as one of 16 bits.
static const std::vector<Fault> faults = {
    {0x0008, 0x0008, "CS", "ORiGINAL\\PRIMARY\\", "ORGINAL\\PRIMARY ", 0},
    {0x0008, 0x0018, "UI", "1.2.840.x.1 ", "1.2.840..1", 0},
    {0x0008, 0x0020, "DA", "2024.01.31", "20240131", 0},
    {0x0008, 0x0021, "DA", "240131", "20240231", 0},
    {0x0008, 0x0022, "DA", "19100.01.3", "", 0},
    {0x0008, 0x002A, "DT", "2024/01/31   ", "20240131", 0},
    {0x0008, 0x0030, "TM", "12:30:00", "123000", 0},
    {0x0008, 0x0031, "TM", "12h30 ", "1230", 0},
    {0x0008, 0x0050, "SH", "A number of more than 16 ", "A number of more", 0},
    {0x0008, 0x0054, "AE", " STATION \\ B", "STATION\\B ", 0},
    {0x0008, 0x0070, "LO", "   Maker" + NUL, "Maker ", 0},
    {0x0008, 0x0081, "ST", "An address   ", "An address", 0},
    {0x0010, 0x0010, "PN", " Doe^John ", "Doe^John", 0},
    {0x0010, 0x1010, "AS", "5Y", "005Y", 0},
    {0x0010, 0x21B0, "LT", "History" + NUL, "History", 0},
    {0x0018, 0x0050, "DS", "1,5 mm", "15", 0},
    {0x0018, 0x1242, "IS", "12.7", "12", 0},
    {0x0018, 0x6018, "UL", std::string ("\x01\x00\x02\x00\x03", 5), "", 4},
    {0x0018, 0x6020, "SL", std::string ("\xFE\xFF\xFF\xFF", 4), std::string ("\xFE\xFF\xFF\xFF", 4), 4},
    {0x0018, 0x9073, "FD", std::string ("\x00\x00\x00\x00\x00\x00\xF8\x3F\x01\x02\x03\x04", 12), "", 8},
    {0x0018, 0x9332, "FD", std::string ("\x00\x00\x00\x00\x00\x00\xF8\x3F", 8),
     std::string ("\x00\x00\x00\x00\x00\x00\xF8\x3F", 8), 8},
    {0x0020, 0x0013, "IS", "3000000000", "", 0},
    {0x0028, 0x0009, "AT", std::string ("\x18\x00\x63\x10\x01", 5), "", 2},
    {0x0028, 0x0010, "US", std::string ("\x40\x00\x41", 3), "", 2},
    {0x0028, 0x0011, "US", std::string ("\x40\x01", 2), std::string ("\x40\x01", 2), 2},
    {0x0028, 0x1041, "SS", std::string ("\xFF\xFF", 2), std::string ("\xFF\xFF", 2), 2},
    {0x0028, 0x1201, "OW", std::string ("\x01\x02\x03\x04", 4), std::string ("\x01\x02\x03\x04", 4), 2},
    {0x0040, 0xA160, "UT", "  A text   ", "  A text", 0},
    {0x0046, 0x0117, "FL", std::string ("\x00\x00\xC0\x3F", 4), std::string ("\x00\x00\xC0\x3F", 4), 4},
};

static std::string In_Order (std::string bytes, int bytes_of_one, Stream_Syntax syntax) {
    bool   big  = syntax == EXPLICIT_BIG || syntax == IMPLICIT_BIG;
    size_t unit = static_cast<size_t> (bytes_of_one);
    if (big && unit)
        for (size_t i = 0; i + unit <= bytes.size (); i += unit)
            std::reverse (bytes.begin () + static_cast<long> (i), bytes.begin () + static_cast<long> (i + unit));
    return bytes;
}

// The stream without preamble, so that the first mode alone says how it is read. One fault stands inside an item.
static Stream Fault_Stream (Stream_Syntax syntax, bool faulty) {
    Stream stream = Stream_Begin (syntax);
    for (const Fault &fault : faults)
        Stream_Add_Bytes (&stream, fault.group, fault.element, fault.vr,
                          In_Order (faulty ? fault.faulty : fault.cleaned, fault.unit, syntax));
    Stream_Open_Sequence (&stream, 0x0400, 0x0561, true);
    Stream_Open_Item (&stream, false);
    Stream_Add_Bytes (&stream, 0x0008, 0x0008, "CS", faulty ? "1axial" : "1 ");
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    return stream;
}

static uint8_t Mode (Stream_Syntax syntax) {
    static const uint8_t modes[] = {0, MODE_EXPLICIT, MODE_EXPLICIT | MODE_BIG_ENDIAN, MODE_BIG_ENDIAN};
    return modes[syntax];
}

// The lines of the listing behind its legend, with their display codes.
static std::string Listing (Stream_Syntax syntax) {
    Temporary_Directory directory;
    Settings            settings = {};
    SequenceCursor      cursor   = {};
    settings.mode_start          = Mode (syntax);
    cursor.settings              = &settings;
    std::string name             = directory.Write ("faults.dcm", Fault_Stream (syntax, true).bytes);
    Attribute  *list             = File_Read_List (nullptr, &cursor, name.c_str ());

    Log_Recorder log;
    DICOM_Attribute_Sequence_Reset (nullptr, &cursor);
    DICOM_Attribute_List (nullptr, &cursor, list, LOG_REPORT);
    std::string text;
    for (const Log_Line &line : log.lines)
        if (line.text.find ("Stool syntax") == std::string::npos && line.text.find ("(grp, elem)") == std::string::npos)
            text += line.text + "\n";
    List_Delete (nullptr, &cursor, &list);
    return text;
}

// Without display codes and blanks at line ends.
static std::string Plain (const std::string &listing) {
    std::string text;
    for (char c : Clean (listing)) {
        while (c == '\n' && !text.empty () && text.back () == ' ') text.pop_back ();
        text += c;
    }
    return text;
}

static const char *const EXPECTED =
    "(0008,0008) (DICOM)     Image Type                               (CS,--,16  ) ORGINAL\\PRIMARY\n"
    "(0008,0018) (DICOM)     SOP Instance UID                         (UI,--,10  ) 1.2.840..1\n"
    "(0008,0020) (DICOM)     Study Date                               (DA,--,8   ) 20240131\n"
    "(0008,0021) (DICOM)     Series Date                              (DA,--,8   ) 20240231\n"
    "(0008,0022) (DICOM)     Acquisition Date                         (DA,--,0   ) (no data)\n"
    "(0008,002a) (DICOM)     Acquisition DateTime                     (DT,--,8   ) 20240131\n"
    "(0008,0030) (DICOM)     Study Time                               (TM,--,6   ) 31 32 33 30 30 30\n"
    "(0008,0031) (DICOM)     Series Time                              (TM,--,4   ) 31 32 33 30\n"
    "(0008,0050) (DICOM)     Accession Number                         (SH,--,16  ) A number of more\n"
    "(0008,0054) (DICOM)     Retrieve AE Title                        (AE,--,10  ) STATION\\B\n"
    "(0008,0070) (DICOM)     Manufacturer                             (LO,--,6   ) Maker\n"
    "(0008,0081) (DICOM)     Institution Address                      (ST,--,10  ) An address\n"
    "(0010,0010) (DICOM)     Patient's Name                           (PN,--,8   ) Doe^John\n"
    "(0010,1010) (DICOM)     Patient's Age                            (AS,--,4   ) 005Y\n"
    "(0010,21b0) (DICOM)     Additional Patient History               (LT,--,7   ) History\n"
    "(0018,0050) (DICOM)     Slice Thickness                          (DS,--,2   ) 15\n"
    "(0018,1242) (DICOM)     Actual Frame Duration                    (IS,--,2   ) 12\n"
    "(0018,6018) (Invalid)   Region Location Min X0                   (UL,--,0   ) (no data)\n"
    "(0018,6020) (DICOM)     Reference Pixel X0                       (SL,--,4   ) -2\n"
    "(0018,9073) (Invalid)   Acquisition Duration                     (FD,--,0   ) (no data)\n"
    "(0018,9332) (DICOM)     Exposure in mAs                          (FD,--,8   ) 1.500\n"
    "(0020,0013) (DICOM)     Instance Number                          (IS,--,0   ) (no data)\n"
    "(0028,0009) (Invalid)   Frame Increment Pointer                  (AT,--,0   ) (no data)\n"
    "(0028,0010) (Invalid)   Rows                                     (US,--,0   ) (no data)\n"
    "(0028,0011) (DICOM)     Columns                                  (US,--,2   ) 320\n"
    "(0028,1041) (DICOM)     Pixel Intensity Relationship Sign        (SS,--,2   ) -1\n"
    "(0028,1201) (DICOM)     Red Palette Color Lookup Table Data      (OW,--,4   ) 0201 0403\n"
    "(0040,a160) (DICOM)     Text Value                               (UT,--,8   )   A text\n"
    "(0046,0117) (DICOM)     Refractive Index of Cornea               (FL,--,4   ) 1.500\n"
    "(0400,0561) (DICOM)     Original Attributes Sequence             (SQ,--,30  ) ---- Sequence in ---------------\n"
    "------------------------ ---- Sequence in ----(depth=0)-----\n"
    "    ------------------------ ---- Item[1] in ---------------\n"
    "    (0008,0008) (DICOM)     Image Type                               (CS,--,2   ) 1\n"
    "    ------------------------ ---- Item[1] out --------------\n"
    "------------------------ ---- Sequence out --------------\n";

TEST (CleanupListing, EveryFaultIsCorrectedInEveryByteOrderAndVrMode) {
    for (Stream_Syntax syntax : {IMPLICIT_LITTLE, EXPLICIT_LITTLE, EXPLICIT_BIG, IMPLICIT_BIG})
        EXPECT_EQ (EXPECTED, Plain (Listing (syntax))) << syntax;
    EXPECT_EQ (Listing (EXPLICIT_LITTLE), Listing (EXPLICIT_BIG));
    EXPECT_EQ (Listing (IMPLICIT_LITTLE), Listing (IMPLICIT_BIG));
}

TEST (CleanupListing, TheColoursTellMarksAndWhereTheVrCameFrom) {
    std::string with_vr = Listing (EXPLICIT_LITTLE), without = Listing (IMPLICIT_LITTLE);
    EXPECT_NE (std::string::npos, with_vr.find ("(\x04"
                                                "0008\x02,\x04"
                                                "0008\x02)")); // syntax error: red
    EXPECT_NE (std::string::npos, with_vr.find ("(\x01"
                                                "0008\x02,\x01"
                                                "0020\x02)")); // rewritten only: blue
    EXPECT_NE (std::string::npos, with_vr.find ("\x01"
                                                "CS"));
    EXPECT_EQ (std::string::npos, without.find ("\x01"
                                                "CS"));
    EXPECT_NE (std::string::npos, without.find ("\x06"
                                                "CS"));
}

TEST (CleanupListing, AFaultyFileEqualsItsCleanTwin) {
    for (Stream_Syntax syntax : {IMPLICIT_LITTLE, EXPLICIT_LITTLE, EXPLICIT_BIG, IMPLICIT_BIG}) {
        Temporary_Directory directory;
        Settings            settings = {};
        settings.mode_start          = Mode (syntax);
        std::string  faulty          = directory.Write ("faulty.dcm", Fault_Stream (syntax, true).bytes);
        std::string  clean           = directory.Write ("clean.dcm", Fault_Stream (syntax, false).bytes);
        Log_Recorder log;
        // The sequence's own length is the one thing that differs: its item is four bytes longer in the faulty file.
        EXPECT_EQ (1, Comparison_Run (nullptr, &settings, faulty.c_str (), clean.c_str (), 1)) << log.Text (LOG_AUDIT);
        EXPECT_EQ (1, log.Count (LOG_AUDIT, "! (0400,0561)       SQ (26/vs/30)"));
    }
}

TEST (CleanupListing, FindingsOfBothPassesAreReported) {
    Temporary_Directory directory;
    Settings            settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};
    SequenceCursor      cursor   = {};
    cursor.settings              = &settings;
    std::string  name            = directory.Write ("faults.dcm", Fault_Stream (EXPLICIT_LITTLE, true).bytes);
    Log_Recorder log;
    Attribute   *list = File_Read_List (nullptr, &cursor, name.c_str ());
    List_Delete (nullptr, &cursor, &list);
    EXPECT_EQ (1, log.Count (LOG_REPORT, "(0008,0020) VR=DA Old syntax! 2024.01.31 should be changed to 20240131"));
    EXPECT_EQ (1, log.Count (LOG_REPORT, "(0008,0020) VR=DA Old syntax! 2024.01.31 changed to 20240131"));
    EXPECT_EQ (
        2, log.Count (LOG_WARNING, "(0018,9073) VR=FD Invalid data! Expecting \"Floation Point Double\" but got 12"));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "(0018,1242) VR=IS Invalid data! Expecting VR=IS but got VR=DS"));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "(0018,1242) VR=IS Invalid data! Converted from \"12.7\" to \"12\""));
}
