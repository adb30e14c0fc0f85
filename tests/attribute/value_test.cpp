#include "attribute/value.h"

#include <gtest/gtest.h>

#include <string.h>

#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"

static const char *const MODULE = "value_test";

static Attribute Text (const std::string &value) { return Record (0x0008, 0x0060, "CS", value); }

TEST (Value, SharingKeepsOneBlock) {
    long      before = Memory_Live ();
    Attribute a = Text ("ABCD"), b = {};
    b.length = 4;
    Value_Share (&b, &a);
    EXPECT_EQ (a.data, b.data);
    EXPECT_EQ (before + 1, Memory_Live ());
    Value_Release (&a);
    EXPECT_EQ (nullptr, a.data);
    EXPECT_EQ ("ABCD", Value (&b));
    Value_Release (&b);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, SharingWithItselfKeepsTheBytes) {
    Attribute a = Text ("ABCD");
    Value_Share (&a, &a);
    EXPECT_EQ ("ABCD", Value (&a));
    Value_Release (&a);
}

TEST (Value, SharingNothingReleasesTheOldValue) {
    long      before = Memory_Live ();
    Attribute a = Text ("ABCD"), none = {};
    Value_Share (&a, &none);
    EXPECT_EQ (nullptr, a.data);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, AWriterUnsharesAndTheOtherKeepsItsBytes) {
    Attribute a = Text ("ABCD"), b = Text ("");
    b.length = 4;
    Value_Share (&b, &a);
    ASSERT_EQ (1, Value_Unshare (nullptr, HERE ("b", 4, 1), &b));
    b.data[0] = 'X';
    EXPECT_EQ ("ABCD", Value (&a));
    EXPECT_EQ ("XBCD", Value (&b));
    Value_Release (&a);
    Value_Release (&b);
}

TEST (Value, UnsharingTheOnlyOwnerCopiesNothing) {
    Attribute a     = Text ("ABCD");
    uint8_t  *bytes = a.data;
    Memory_Fail_At (1);
    EXPECT_EQ (1, Value_Unshare (nullptr, HERE ("a", 4, 1), &a));
    EXPECT_EQ (0, Memory_Failed ());
    Memory_Fail_At (0);
    EXPECT_EQ (bytes, a.data);
    Value_Release (&a);
}

TEST (Value, UnsharingNothingSucceeds) {
    Attribute none = {};
    EXPECT_EQ (1, Value_Unshare (nullptr, HERE ("none", 0, 1), &none));
    EXPECT_EQ (nullptr, none.data);
}

TEST (Value, AFailedUnshareLeavesBothAsTheyWere) {
    Log_Recorder log;
    Attribute    a = Text ("ABCD"), b = {};
    b.length = 4;
    Value_Share (&b, &a);
    Memory_Fail_At (1);
    EXPECT_EQ (0, Value_Unshare (nullptr, HERE ("b->data", 4, 1), &b));
    EXPECT_TRUE (log.Contains ("memory error in malloc (var=b->data, dim=4x1)"));
    EXPECT_EQ (a.data, b.data);
    Value_Release (&a);
    Value_Release (&b);
}

TEST (Value, ResizingKeepsTheFirstBytes) {
    Attribute a = Text ("ABCD"), b = {};
    b.length = 4;
    Value_Share (&b, &a);
    ASSERT_EQ (1, Value_Resize (nullptr, HERE ("b", 6, 1), &b, 6)); // shared: a copy
    b.data[4] = b.data[5] = '!';
    b.length              = 6;
    EXPECT_EQ ("ABCD!!", Value (&b));
    ASSERT_EQ (1, Value_Resize (nullptr, HERE ("b", 2, 1), &b, 2)); // own: in place
    b.length = 2;
    EXPECT_EQ ("AB", Value (&b));
    EXPECT_EQ ("ABCD", Value (&a));
    Value_Release (&a);
    Value_Release (&b);
}

TEST (Value, ResizingASharedValueToLessCopiesTheRestOnly) {
    for (int32_t size : {3, 1, 0}) {
        Attribute a = Text ("ABCD"), b = {};
        b.length = 4;
        Value_Share (&b, &a);
        ASSERT_EQ (1, Value_Resize (nullptr, HERE ("b", size, 1), &b, size));
        b.length = size;
        EXPECT_NE (a.data, b.data);
        EXPECT_EQ (std::string ("ABCD").substr (0, static_cast<size_t> (size)), Value (&b));
        EXPECT_EQ ("ABCD", Value (&a));
        Value_Release (&a);
        Value_Release (&b);
    }
}

TEST (Value, UnsharingAnEmptyValueMakesItsOwnBuffer) {
    Attribute a = Text ("AB"), b = {};
    Value_Share (&b, &a); // Of length 0.
    ASSERT_EQ (1, Value_Unshare (nullptr, HERE ("b", 0, 1), &b));
    EXPECT_NE (nullptr, b.data);
    EXPECT_NE (a.data, b.data);
    EXPECT_EQ ("AB", Value (&a));
    Value_Release (&a);
    Value_Release (&b);
}

TEST (Value, AFailedResizeKeepsTheValue) {
    Log_Recorder log;
    Attribute    a = Text ("ABCD"), b = {};
    b.length = 4;
    for (Attribute *shared : {&b, static_cast<Attribute *> (nullptr)}) {
        if (shared) Value_Share (shared, &a);
        Memory_Fail_At (1);
        EXPECT_EQ (0, Value_Resize (nullptr, HERE ("target->data", 6, 1), &a, 6));
        EXPECT_EQ ("ABCD", Value (&a));
        Value_Release (&b);
    }
    EXPECT_EQ (2, log.Count (LOG_ERROR, "memory error in realloc (var=target->data, dim=6x1)"));
    Value_Release (&a);
}

TEST (Value, AnEmptyBufferIsPresent) {
    Attribute a = {};
    ASSERT_EQ (1, Value_New (nullptr, HERE ("a", 0, 1), &a, 0));
    EXPECT_NE (nullptr, a.data);
    Value_Release (&a);
}

TEST (Value, ATextReplacesTheValue) {
    Log_Recorder log;
    Attribute    a = Text ("ABCD");
    ASSERT_EQ (1, Value_Set_Text (nullptr, HERE ("tag->data", 0, 0), &a, "some text"));
    EXPECT_STREQ ("some text", reinterpret_cast<char *> (a.data));
    Memory_Fail_At (1);
    EXPECT_EQ (0, Value_Set_Text (nullptr, HERE ("tag->data", 0, 0), &a, "more"));
    EXPECT_STREQ ("some text", reinterpret_cast<char *> (a.data));
    EXPECT_TRUE (log.Contains ("memory error in strdup (var=tag->data)"));
    Value_Release (&a);
}

TEST (Value, AFileIsViewedAndItsViewOutlivesIt) {
    Temporary_Directory directory;
    std::string         name   = directory.Write ("value.dat", std::string (5000, 'v') + "end!");
    long                before = Memory_Live ();

    File *file = File_Open (name.c_str ());
    ASSERT_NE (nullptr, file);
    ASSERT_EQ (1, File_Seek (file, 5000));
    Attribute a = {};
    a.length    = 4;
    ASSERT_EQ (1, Value_Map (nullptr, &a, file, 4));
    EXPECT_EQ (5004, File_Tell (file));
    File_Close (file);
    EXPECT_EQ (1, Value_Is_Mapped (&a));
    EXPECT_EQ ("end!", Value (&a));

    ASSERT_EQ (1, Value_Unshare (nullptr, HERE ("a", 4, 1), &a));
    EXPECT_EQ (0, Value_Is_Mapped (&a));
    a.data[0] = 'E';
    EXPECT_EQ ("End!", Value (&a));
    Value_Release (&a);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, AFailedMappingLeavesTheValue) {
    Temporary_Directory directory;
    std::string         name = directory.Write ("value.dat", std::string ("12345678"));
    Attribute           a    = Text ("ABCD");
    File               *file = File_Open (name.c_str ());
    ASSERT_NE (nullptr, file);
    File_Fail_At (FILE_MAP, 1, 5);
    EXPECT_EQ (0, Value_Map (nullptr, &a, file, 4));
    EXPECT_EQ (0, File_Tell (file));
    Memory_Fail_At (1);
    EXPECT_EQ (0, Value_Map (nullptr, &a, file, 4));
    EXPECT_EQ ("ABCD", Value (&a));
    File_Close (file);
    Value_Release (&a);
}

// --- room behind a record --------------------------------------------------

static Attribute *With_Room (int32_t room, const std::string &value) {
    Element_Header header = {};
    header.length         = static_cast<int32_t> (value.size ());
    Attribute *record     = Value_Record_New (&header, room, nullptr);
    if (record && Value_New_In_Room (record, header.length)) memcpy (record->data, value.data (), value.size ());
    return record;
}

TEST (Value, RoomBehindARecordTakesOneValueThatFits) {
    long       before = Memory_Live ();
    Attribute *record = With_Room (6, "ABCD");
    EXPECT_EQ ("ABCD", Value (record));
    EXPECT_EQ (before + 1, Memory_Live ());
    EXPECT_EQ (0, Value_New_In_Room (record, 2)); // in use
    Value_Release (record);
    EXPECT_EQ (nullptr, record->data);
    EXPECT_EQ (0, Value_New_In_Room (record, 7));
    EXPECT_EQ (nullptr, record->data);
    EXPECT_EQ (1, Value_New_In_Room (record, 6));
    Value_Record_Free (record);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, ARecordIsMadeWithItsFieldsAndItsValue) {
    static const uint8_t bytes[] = {'A', 'B', 'C', 'D'};

    static const Dictionary_Entry *const entry = reinterpret_cast<const Dictionary_Entry *> (bytes); // Not looked into.

    long           before = Memory_Live ();
    Element_Header header = {1, 2, 3, 4, VR_SH, VR_LO, 7, 8, 4, entry};
    Attribute     *record = Value_Record_New (&header, 4, bytes);
    ASSERT_NE (nullptr, record);
    EXPECT_EQ (before + 1, Memory_Live ());
    EXPECT_EQ ("ABCD", Value (record));
    EXPECT_NE (bytes, record->data);
    EXPECT_EQ (1, record->mode);
    EXPECT_EQ (2, record->flags);
    EXPECT_EQ (3, record->group);
    EXPECT_EQ (4, record->element);
    EXPECT_EQ (VR_SH, record->vr_file);
    EXPECT_EQ (VR_LO, record->vr);
    EXPECT_EQ (7u, record->pos_tag);
    EXPECT_EQ (8u, record->pos_data);
    EXPECT_EQ (entry, record->definition);
    EXPECT_EQ (nullptr, record->next);
    EXPECT_EQ (nullptr, record->item);
    EXPECT_EQ (nullptr, record->description);

    Attribute b = {};
    Value_Share (&b, record);
    Value_Record_Free (record);
    EXPECT_EQ ("ABCD", std::string (reinterpret_cast<const char *> (b.data), 4)); // its room stays
    Value_Release (&b);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, ARecordWithoutRoomIsFreedWithItsValue) {
    long       before = Memory_Live ();
    Attribute *record = With_Room (0, "ABCD");
    EXPECT_EQ (nullptr, record->data);
    ASSERT_EQ (1, Value_New (nullptr, HERE ("record", 4, 1), record, 4));
    EXPECT_EQ (before + 2, Memory_Live ());
    Value_Record_Free (record);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, AFailedRecordIsNotReported) {
    Log_Recorder   log;
    Element_Header header = {};
    Memory_Fail_At (1);
    EXPECT_EQ (nullptr, Value_Record_New (&header, 4, nullptr));
    EXPECT_EQ (0u, log.lines.size ());
}

TEST (Value, AValueInTheRoomOutlivesItsRecord) {
    long       before = Memory_Live ();
    Attribute *record = With_Room (4, "ABCD");
    Attribute  b      = {};
    b.length          = 4;
    Value_Share (&b, record);
    EXPECT_EQ (record->data, b.data);
    Value_Record_Free (record);
    EXPECT_EQ ("ABCD", Value (&b));
    EXPECT_EQ (before + 1, Memory_Live ());
    uint8_t *bytes = b.data;
    EXPECT_EQ (1, Value_Unshare (nullptr, HERE ("b", 4, 1), &b)); // the only one by now
    EXPECT_EQ (bytes, b.data);
    Value_Release (&b);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, AWriterOfAValueInTheRoomUnshares) {
    long       before = Memory_Live ();
    Attribute *record = With_Room (4, "ABCD");
    uint8_t   *bytes  = record->data;
    Attribute  b      = {};
    b.length          = 4;
    EXPECT_EQ (1, Value_Unshare (nullptr, HERE ("record", 4, 1), record));
    EXPECT_EQ (bytes, record->data);
    Value_Share (&b, record);
    ASSERT_EQ (1, Value_Unshare (nullptr, HERE ("record", 4, 1), record));
    record->data[0] = 'X';
    EXPECT_EQ ("ABCD", Value (&b));
    EXPECT_EQ ("XBCD", Value (record));
    EXPECT_EQ (0, Value_New_In_Room (record, 4)); // b has it
    Value_Record_Free (record);
    EXPECT_EQ ("ABCD", Value (&b));
    Value_Release (&b);
    EXPECT_EQ (before, Memory_Live ());
}

TEST (Value, AValueIsResizedInItsRoomAndLeavesItWhenItIsTooLong) {
    long       before = Memory_Live ();
    Attribute *record = With_Room (4, "ABC");
    uint8_t   *bytes  = record->data;
    ASSERT_EQ (1, Value_Resize (nullptr, HERE ("record", 4, 1), record, 4));
    EXPECT_EQ (bytes, record->data);
    ASSERT_EQ (1, Value_Resize (nullptr, HERE ("record", 5, 1), record, 5));
    EXPECT_NE (bytes, record->data);
    memcpy (record->data + 3, "DE", 2);
    record->length = 5;
    EXPECT_EQ ("ABCDE", Value (record));
    EXPECT_EQ (before + 2, Memory_Live ());
    EXPECT_EQ (1, Value_New_In_Room (record, 4)); // free again
    EXPECT_EQ (before + 1, Memory_Live ());
    Value_Record_Free (record);
    EXPECT_EQ (before, Memory_Live ());
}
