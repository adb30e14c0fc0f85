// Any byte string must come to an end, without a read behind its last byte (the sanitizers see each one: a stream lies in
// a block of exactly its size).
#include "nema/NEMA_Read_TAG.h"

#include <gtest/gtest.h>

#include <string.h>

#include <memory>
#include <random>

#include "attribute/value.h"
#include "nema/NEMA_Read_Value.h"
#include "tests/nema/opened_source.h"
#include "tests/support/log_recorder.h"

typedef std::mt19937 Random;

static size_t Below (Random *random, size_t count) { return (*random) () % count; }

// Pieces of which headers are made, so that random streams reach every branch.
static const char *const pieces[] = {
    "02 00",       "02 00 10 00", "08 00 60 00", "00 08 00 60", "FE FF 00 E0", "FF FE E0 00", "FE FF 0D E0",
    "FE FF DD E0", "3F 3F 3F 00", "3F 3F 00 3F", "E0 7F 10 00", "7F E0 00 10", "40 00 75 02", "00 40 02 75",
    "09 00 10 10", "00 09 10 10", "43 53",       "4F 42",       "4F 57",       "4F 58",       "53 51",
    "55 4E",       "55 54",       "55 4C",       "06 00",       "00 06",       "0D 00",       "0D 00 00 00",
    "FF FF FF FF", "FE FF FF FF", "FF FF FF 7F", "00 00 00 80", "00 00",       "00 00 00 00", "20 20 20 20",
    "FF D8 FF E0", "E0 FF D8 FF", "FF D9",       "D9 FF",       "FF",          "00",
};

static Bytes Random_Stream (Random *random) {
    Bytes  stream;
    size_t parts = Below (random, 24);
    for (size_t i = 0; i < parts; i++) {
        if (Below (random, 4)) stream = stream + Hex (pieces[Below (random, std::size (pieces))]);
        else stream.push_back (static_cast<unsigned char> ((*random) ()));
    }
    return stream;
}

static Bytes Random_Bytes (Random *random, size_t most) {
    Bytes bytes (Below (random, most + 1));
    for (unsigned char &byte : bytes) byte = static_cast<unsigned char> ((*random) ());
    return bytes;
}

struct Element {
    int      result = 0;
    uint16_t group = 0, element = 0, vr = 0;
    int32_t  length   = 0;
    int64_t  position = 0;
    bool     operator== (const Element &b) const {
            return result == b.result && group == b.group && element == b.element && vr == b.vr && length == b.length &&
                   position == b.position;
    }
};

// All headers up to the first failure, passing over the values that are there.
static std::vector<Element> Read_All (NEMA_Source *source, uint8_t mode, int32_t limit, size_t size) {
    std::vector<Element> elements;
    for (;;) {
        Element element;
        int64_t before   = NEMA_Tell (source);
        element.result   = NEMA_Get_Data_Element (nullptr, source, mode, &element.group, &element.element, &element.vr,
                                                  &element.length, limit);
        element.position = NEMA_Tell (source);
        elements.push_back (element);
        if (!element.result) return elements;

        EXPECT_GE (element.position, before + 4);
        EXPECT_LE (element.position, static_cast<int64_t> (size));
        EXPECT_GE (element.length, LENGTH_UNDEFINED);
        EXPECT_LE (elements.size (), size / 4 + 1);
        if (element.length > 0 && element.length <= static_cast<int64_t> (size) - element.position) {
            Attribute value = {};
            EXPECT_EQ (NEMA_Read_Buffer (nullptr, source, mode, element.length, &value), 1);
            Value_Release (&value);
        }
    }
}

struct Memory_Stream {
    explicit Memory_Stream (const Bytes &bytes) : block (new uint8_t[bytes.size ()]) {
        std::copy (bytes.begin (), bytes.end (), block.get ());
        source.kind = NEMA_MEMORY;
        source.base = block.get ();
        source.size = static_cast<uint32_t> (bytes.size ());
    }
    std::unique_ptr<uint8_t[]> block;
    NEMA_Source                source = {};
};

TEST (NemaReadTagRandom, EveryStreamEnds) {
    Random random (20160615);
    for (int i = 0; i < 100000; i++) {
        Bytes         bytes = i % 2 ? Random_Stream (&random) : Random_Bytes (&random, 64);
        Memory_Stream stream (bytes);
        int32_t       limit = Below (&random, 2) ? static_cast<int32_t> (bytes.size ()) : 0;
        Read_All (&stream.source, static_cast<uint8_t> (random ()), limit, bytes.size ());
        if (HasFailure ()) FAIL () << "stream " << i;
    }
}

TEST (NemaReadTagRandom, FileAndMemoryAreReadAlike) {
    Random              random (7);
    Temporary_Directory directory;
    for (int i = 0; i < 2000; i++) {
        Bytes         bytes = Random_Stream (&random);
        Memory_Stream memory (bytes);
        std::string   name = directory.Write (std::to_string (i), bytes);
        NEMA_Source   file = {};
        file.kind          = NEMA_FILE;
        file.name          = name.c_str ();
        file.file          = File_Open (name.c_str ());
        ASSERT_NE (file.file, nullptr);
        uint8_t mode  = static_cast<uint8_t> (random ());
        int32_t limit = static_cast<int32_t> (bytes.size ());
        EXPECT_TRUE (Read_All (&memory.source, mode, limit, bytes.size ()) ==
                     Read_All (&file, mode, limit, bytes.size ()))
            << "stream " << i;
        File_Close (file.file);
    }
}

// Where a trace is written every header is read field by field, else most are taken at once.
TEST (NemaReadTagRandom, HeadersTakenAtOnceAreThoseReadFieldByField) {
    Random random (20240131);
    size_t taken = 0;
    for (int i = 0; i < 20000; i++) {
        Bytes         bytes = Random_Stream (&random) + Hex ("00 00 00 00 00 00 00 00 00 00 00 00");
        Memory_Stream at_once (bytes), by_field (bytes);
        uint8_t       mode      = static_cast<uint8_t> (random () & ~3u);
        int32_t       limit     = Below (&random, 2) ? static_cast<int32_t> (bytes.size ()) : 0;
        Settings      loud      = {LOG_WARNING, LOG_REPORT, mode, 0, nullptr, nullptr};
        at_once.source.settings = by_field.source.settings = &loud;

        Log_Recorder         silent;
        std::vector<Element> elements = Read_All (&at_once.source, mode, limit, bytes.size ());
        Log_Recorder         traced (4);
        ASSERT_TRUE (elements == Read_All (&by_field.source, mode, limit, bytes.size ())) << "stream " << i;
        ASSERT_EQ (silent.Text (LOG_WARNING), traced.Text (LOG_WARNING)) << "stream " << i;
        taken += elements.size ();
    }
    EXPECT_GT (taken, 20000u);
}

TEST (NemaReadTagRandom, EveryValueIsDecodedOrRefused) {
    static const uint16_t vrs[]    = {VR_AE, VR_AT, VR_CS, VR_DS, VR_FD, VR_FL, VR_IS, VR_LT, VR_OW,
                                      VR_PN, VR_RT, VR_SL, VR_SS, VR_UI, VR_UL, VR_UN, VR_US, 0};
    static const char     digits[] = "0123456789+-.eE \\\\x";

    Random random (42);
    long   live = Memory_Live ();
    for (int i = 0; i < 50000; i++) {
        Bytes bytes = Random_Bytes (&random, 40);
        if (i % 2)
            for (unsigned char &byte : bytes) byte = static_cast<unsigned char> (digits[byte % (sizeof digits)]);
        std::unique_ptr<uint8_t[]> block (new uint8_t[bytes.size ()]);
        std::copy (bytes.begin (), bytes.end (), block.get ());
        Attribute attribute = {};
        attribute.mode      = static_cast<uint8_t> (random ());
        attribute.length    = static_cast<int32_t> (bytes.size ());
        attribute.data      = block.get ();
        uint16_t vr         = vrs[Below (&random, std::size (vrs))];

        if (char **texts = V_Str (nullptr, &attribute, vr)) {
            size_t total = 0;
            for (int32_t n = 0; n < attribute.vm; n++) total += strlen (texts[n]);
            ASSERT_LE (total, bytes.size ());
            ASSERT_EQ (texts[attribute.vm], nullptr);
        }
        if (int32_t *numbers = V_Int (nullptr, &attribute, vr)) {
            int64_t sum = 0;
            for (int32_t n = 0; n < attribute.vm; n++) sum += numbers[n];
            ASSERT_LE (sum, INT64_C (41) * INT32_MAX);
        }
        if (float *numbers = V_Float (nullptr, &attribute, vr)) {
            int32_t counted = 0;
            for (int32_t n = 0; n < attribute.vm; n++) counted += numbers[n] <= 0 || !(numbers[n] <= 0);
            ASSERT_EQ (counted, attribute.vm);
        }
    }
    NEMA_Value_Rings_Free ();
    EXPECT_EQ (Memory_Live (), live);
}
