// The lines of the data dictionary: PS3.6 as text, a file for each group or few small groups, ascending by tag. A line
// is the tag, the name, and the VR with its multiplicity; a tag with several VRs names each with its own:
//
//     (gggg,eeee) Name                VR VM
//     (gggg,eeee) Name                VR VM RET            retired
//     (gggg,eeee) Name                (VR VM)or(VR VM)     up to three
//
// Blanks behind the name are for the eye. An "x" in a group stands for any digit, so one line serves all curves or
// overlays; in an element it is just a 0. Lines left out on purpose: groups 0000 and FFFE, whose tags are no
// attributes, and (7Fxx,eeee), which would be found in place of the pixel data of group 7FE0. The tests read every line
// again.
#include "tables/data_dictionary.h"

#include <stddef.h>

// clang-format off
static const char *const lines_0002[] = {
#include "tables/dictionary/0002.inc"
};
static const char *const lines_0004_0006[] = {
#include "tables/dictionary/0004-0006.inc"
};
static const char *const lines_0008[] = {
#include "tables/dictionary/0008.inc"
};
static const char *const lines_0010[] = {
#include "tables/dictionary/0010.inc"
};
static const char *const lines_0012[] = {
#include "tables/dictionary/0012.inc"
};
static const char *const lines_0014[] = {
#include "tables/dictionary/0014.inc"
};
static const char *const lines_0016[] = {
#include "tables/dictionary/0016.inc"
};
static const char *const lines_0018[] = {
#include "tables/dictionary/0018.inc"
};
static const char *const lines_0020[] = {
#include "tables/dictionary/0020.inc"
};
static const char *const lines_0022[] = {
#include "tables/dictionary/0022.inc"
};
static const char *const lines_0024[] = {
#include "tables/dictionary/0024.inc"
};
static const char *const lines_0028[] = {
#include "tables/dictionary/0028.inc"
};
static const char *const lines_0032[] = {
#include "tables/dictionary/0032.inc"
};
static const char *const lines_0034[] = {
#include "tables/dictionary/0034.inc"
};
static const char *const lines_0038[] = {
#include "tables/dictionary/0038.inc"
};
static const char *const lines_003A[] = {
#include "tables/dictionary/003A.inc"
};
static const char *const lines_0040[] = {
#include "tables/dictionary/0040.inc"
};
static const char *const lines_0042_0044[] = {
#include "tables/dictionary/0042-0044.inc"
};
static const char *const lines_0046[] = {
#include "tables/dictionary/0046.inc"
};
static const char *const lines_0048[] = {
#include "tables/dictionary/0048.inc"
};
static const char *const lines_0050[] = {
#include "tables/dictionary/0050.inc"
};
static const char *const lines_0052[] = {
#include "tables/dictionary/0052.inc"
};
static const char *const lines_0054[] = {
#include "tables/dictionary/0054.inc"
};
static const char *const lines_0060_0064[] = {
#include "tables/dictionary/0060-0064.inc"
};
static const char *const lines_0066[] = {
#include "tables/dictionary/0066.inc"
};
static const char *const lines_0068[] = {
#include "tables/dictionary/0068.inc"
};
static const char *const lines_006A[] = {
#include "tables/dictionary/006A.inc"
};
static const char *const lines_0070[] = {
#include "tables/dictionary/0070.inc"
};
static const char *const lines_0072[] = {
#include "tables/dictionary/0072.inc"
};
static const char *const lines_0074[] = {
#include "tables/dictionary/0074.inc"
};
static const char *const lines_0076[] = {
#include "tables/dictionary/0076.inc"
};
static const char *const lines_0078_0080[] = {
#include "tables/dictionary/0078-0080.inc"
};
static const char *const lines_0082_0100[] = {
#include "tables/dictionary/0082-0100.inc"
};
static const char *const lines_0400[] = {
#include "tables/dictionary/0400.inc"
};
static const char *const lines_1000_2000[] = {
#include "tables/dictionary/1000-2000.inc"
};
static const char *const lines_2010[] = {
#include "tables/dictionary/2010.inc"
};
static const char *const lines_2020_2040[] = {
#include "tables/dictionary/2020-2040.inc"
};
static const char *const lines_2050_2130[] = {
#include "tables/dictionary/2050-2130.inc"
};
static const char *const lines_2200[] = {
#include "tables/dictionary/2200.inc"
};
static const char *const lines_3002[] = {
#include "tables/dictionary/3002.inc"
};
static const char *const lines_3004[] = {
#include "tables/dictionary/3004.inc"
};
static const char *const lines_3006[] = {
#include "tables/dictionary/3006.inc"
};
static const char *const lines_3008[] = {
#include "tables/dictionary/3008.inc"
};
static const char *const lines_300A[] = {
#include "tables/dictionary/300A.inc"
};
static const char *const lines_300C[] = {
#include "tables/dictionary/300C.inc"
};
static const char *const lines_300E[] = {
#include "tables/dictionary/300E.inc"
};
static const char *const lines_3010[] = {
#include "tables/dictionary/3010.inc"
};
static const char *const lines_4000_4008[] = {
#include "tables/dictionary/4000-4008.inc"
};
static const char *const lines_4010[] = {
#include "tables/dictionary/4010.inc"
};
static const char *const lines_4FFE_50xx[] = {
#include "tables/dictionary/4FFE-50xx.inc"
};
static const char *const lines_5200_5600[] = {
#include "tables/dictionary/5200-5600.inc"
};
static const char *const lines_60xx[] = {
#include "tables/dictionary/60xx.inc"
};
static const char *const lines_7FE0_FFFC[] = {
#include "tables/dictionary/7FE0-FFFC.inc"
};

template <size_t COUNT> static constexpr Dictionary_Table Table (const char *const (&lines)[COUNT]) {
    return {lines, static_cast<int> (COUNT)};
}

// Without a size here, so that a number of tables other than the declared one doesn't compile.
const Dictionary_Table Dictionary_Tables[] = {
    Table (lines_0002),
    Table (lines_0004_0006),
    Table (lines_0008),
    Table (lines_0010),
    Table (lines_0012),
    Table (lines_0014),
    Table (lines_0016),
    Table (lines_0018),
    Table (lines_0020),
    Table (lines_0022),
    Table (lines_0024),
    Table (lines_0028),
    Table (lines_0032),
    Table (lines_0034),
    Table (lines_0038),
    Table (lines_003A),
    Table (lines_0040),
    Table (lines_0042_0044),
    Table (lines_0046),
    Table (lines_0048),
    Table (lines_0050),
    Table (lines_0052),
    Table (lines_0054),
    Table (lines_0060_0064),
    Table (lines_0066),
    Table (lines_0068),
    Table (lines_006A),
    Table (lines_0070),
    Table (lines_0072),
    Table (lines_0074),
    Table (lines_0076),
    Table (lines_0078_0080),
    Table (lines_0082_0100),
    Table (lines_0400),
    Table (lines_1000_2000),
    Table (lines_2010),
    Table (lines_2020_2040),
    Table (lines_2050_2130),
    Table (lines_2200),
    Table (lines_3002),
    Table (lines_3004),
    Table (lines_3006),
    Table (lines_3008),
    Table (lines_300A),
    Table (lines_300C),
    Table (lines_300E),
    Table (lines_3010),
    Table (lines_4000_4008),
    Table (lines_4010),
    Table (lines_4FFE_50xx),
    Table (lines_5200_5600),
    Table (lines_60xx),
    Table (lines_7FE0_FFFC),
};
// clang-format on
