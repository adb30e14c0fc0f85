#include "attribute/sequence_cursor.h"

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

TEST (SequenceCursor, StartStoresTheTagAndGoesDeeper) {
    SequenceCursor cursor = {};
    EXPECT_EQ (1, DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 7, 0));
    uint16_t group, element, flags;
    DICOM_Attribute_Sequence_Get (nullptr, &cursor, 0, &group, &element, &flags);
    EXPECT_EQ (0x0040, group);
    EXPECT_EQ (0xA730, element);
    EXPECT_EQ (7, flags);
    EXPECT_EQ (1, DICOM_Attribute_Sequence_Depth (nullptr, &cursor));
    EXPECT_EQ (-1, DICOM_Attribute_Sequence_End (nullptr, &cursor, 1));
    DICOM_Attribute_Sequence_Get (nullptr, &cursor, 0, &group, &element, nullptr);
    EXPECT_EQ (0x0040, group);
}

TEST (SequenceCursor, ItemsAreCountedAndStopLeavesTheCount) {
    SequenceCursor cursor = {};
    DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0);
    DICOM_Attribute_Item_Start (nullptr, &cursor, 0);
    DICOM_Attribute_Item_Start (nullptr, &cursor, 0);
    DICOM_Attribute_Item_Stop (nullptr, &cursor, 0);
    EXPECT_EQ (1, DICOM_Attribute_Sequence_End (nullptr, &cursor, 1));
    EXPECT_EQ (0, DICOM_Attribute_Sequence_Stop (nullptr, &cursor, 0));
    EXPECT_EQ (-1, DICOM_Attribute_Sequence_End (nullptr, &cursor, 1));
}

TEST (SequenceCursor, TheTenthStartWarnsAndStaysAtNine) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    cursor.settings       = &warning_settings;
    for (int i = 0; i < 9; i++)
        EXPECT_EQ (i + 1, DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0));
    EXPECT_EQ (0u, log.lines.size ());
    EXPECT_EQ (9, DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0));
    ASSERT_EQ (1u, log.lines.size ());
    EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05WARNING:\x02 To many \"sequences\" in DICOM stream"));
}

TEST (SequenceCursor, AStartAtTheLastDepthCountsItsItemsAnew) {
    SequenceCursor cursor = {};
    for (int i = 0; i < 9; i++) DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0);
    DICOM_Attribute_Item_Start (nullptr, &cursor, 0);
    EXPECT_EQ (0, DICOM_Attribute_Sequence_End (nullptr, &cursor, 9));
    DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0);
    EXPECT_EQ (-1, DICOM_Attribute_Sequence_End (nullptr, &cursor, 9));
}

TEST (SequenceCursor, AStopTooManyWarnsWithTheTagOfTheTop) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    cursor.settings       = &warning_settings;
    DICOM_Attribute_Sequence_Set (nullptr, &cursor, 0, 0x0008, 0x1140, 0);
    EXPECT_EQ (0, DICOM_Attribute_Sequence_Stop (nullptr, &cursor, 0));
    EXPECT_EQ ("    WARNING: To many \"out of sequences\" in DICOM stream (0008,1140)\n", log.Text (LOG_WARNING));
    EXPECT_EQ (0, cursor.depth);
}

TEST (SequenceCursor, WithoutSettingsItIsSilent) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    DICOM_Attribute_Sequence_Stop (nullptr, &cursor, 0);
    for (int i = 0; i < 10; i++) DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0);
    EXPECT_EQ (0u, log.lines.size ());
    EXPECT_EQ (0, Sequence_Kind_Note (&cursor));
    cursor.settings = &warning_settings;
    EXPECT_EQ (LOG_REPORT, Sequence_Kind_Note (&cursor));
}

TEST (SequenceCursor, RulersAreIndentedByDepth) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, LOG_REPORT);
    DICOM_Attribute_Item_Start (nullptr, &cursor, LOG_REPORT);
    DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA043, 0, LOG_REPORT);
    DICOM_Attribute_Item_Start (nullptr, &cursor, LOG_REPORT);
    DICOM_Attribute_Item_Start (nullptr, &cursor, LOG_REPORT);
    DICOM_Attribute_Item_Stop (nullptr, &cursor, LOG_REPORT);
    DICOM_Attribute_Sequence_Stop (nullptr, &cursor, LOG_REPORT);
    DICOM_Attribute_Item_Stop (nullptr, &cursor, LOG_REPORT);
    DICOM_Attribute_Sequence_Stop (nullptr, &cursor, LOG_REPORT);
    EXPECT_EQ ("------------------------ ---- Sequence in ----(depth=0)-----\n"
               "    ------------------------ ---- Item[1] in ---------------\n"
               "    ------------------------ ---- Sequence in ----(depth=1)-----\n"
               "        ------------------------ ---- Item[1] in ---------------\n"
               "        ------------------------ ---- Item[2] in ---------------\n"
               "        ------------------------ ---- Item[2] out --------------\n"
               "    ------------------------ ---- Sequence out --------------\n"
               "    ------------------------ ---- Item[1] out --------------\n"
               "------------------------ ---- Sequence out --------------\n",
               log.Text (LOG_REPORT));
}

TEST (SequenceCursor, TracesGoToTheFifthDepth) {
    Log_Recorder   log (5);
    SequenceCursor cursor = {};
    cursor.depth          = 4;
    cursor.settings       = &warning_settings;
    DICOM_Attribute_Sequence_Reset (nullptr, &cursor);
    EXPECT_EQ (0, cursor.depth);
    EXPECT_EQ (&warning_settings, cursor.settings);
    DICOM_Attribute_Sequence_Start (nullptr, &cursor, 0x0040, 0xA730, 0, 0);
    DICOM_Attribute_Item_Start (nullptr, &cursor, 0);
    DICOM_Attribute_Item_Stop (nullptr, &cursor, 0);
    DICOM_Attribute_Sequence_End (nullptr, &cursor, 1);
    EXPECT_EQ ("in DICOM_Attribute_Sequence_Reset()\n-> Item_Number[0] = 0\n-> Item_Number[1] = 0\n"
               "-> root->Item_Number[1] = 1\n-> Item_Number[1] = 1\nin DICOM_Attribute_Sequence_End(depth:1)\n",
               log.Text (LOG_TRACE5));
}

TEST (SequenceCursor, DepthsOutsideAreRefused) {
    SequenceCursor cursor = {};
    for (int depth : {-1, 10, 1000000}) {
        uint16_t group = 1, element = 1, flags = 1;
        DICOM_Attribute_Sequence_Set (nullptr, &cursor, depth, 2, 2, 2);
        DICOM_Attribute_Sequence_Get (nullptr, &cursor, depth, &group, &element, &flags);
        EXPECT_EQ (0, group + element + flags);
        EXPECT_EQ (-1, DICOM_Attribute_Sequence_End (nullptr, &cursor, depth));
    }
}
