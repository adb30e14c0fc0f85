#include "nema/NEMA_Read_Value.h"

#include <gtest/gtest.h>

#include <math.h>
#include <string.h>

#include <future>
#include <thread>

#include "attribute/value.h"
#include "tests/nema/opened_source.h"
#include "tests/support/log_recorder.h"
#include "util/mutex_access.h"

static const unsigned ERROR_CODE = 5;

// An attribute with these bytes as its value.
class Value {
public:
    Value (uint16_t vr, const Bytes &bytes, uint8_t mode = 0) {
        attribute.group   = 0x0008;
        attribute.element = 0x0060;
        attribute.vr_file = vr;
        attribute.mode    = mode;
        attribute.length  = static_cast<int32_t> (bytes.size ());
        if (bytes.empty ()) return;
        Value_New (nullptr, {0, "test", "value", 1, 1}, &attribute, attribute.length);
        memcpy (attribute.data, bytes.data (), bytes.size ());
    }
    Value (uint16_t vr, const std::string &text, uint8_t mode = 0) : Value (vr, From_Text (text), mode) {}
    ~Value () { Value_Release (&attribute); }
    Value (const Value &)            = delete;
    Value &operator= (const Value &) = delete;

    Attribute *At () { return &attribute; }

    Attribute attribute = {};
};

class NemaReadValue : public testing::Test {
protected:
    ~NemaReadValue () override {
        Memory_Fail_At (0);
        NEMA_Source_Register (0, nullptr, nullptr, 0);
        NEMA_Value_Rings_Free ();
    }

    Log_Recorder log {4};

    typedef std::vector<std::string> Texts;
    typedef std::vector<int32_t>     Integers;
    typedef std::vector<float>       Floats;

    // The texts found; {"none"} for none. What follows them is none.
    static Texts Str (Attribute *attribute, uint16_t vr = 0) {
        char **texts = V_Str (nullptr, attribute, vr);
        if (!texts) return {"none"};
        EXPECT_EQ (texts[attribute->vm], nullptr);
        return Texts (texts, texts + attribute->vm);
    }

    static Integers Int (Attribute *attribute, uint16_t vr = 0) {
        int32_t *numbers = V_Int (nullptr, attribute, vr);
        return numbers ? Integers (numbers, numbers + attribute->vm) : Integers {-99};
    }

    static Floats Float (Attribute *attribute, uint16_t vr = 0) {
        float *numbers = V_Float (nullptr, attribute, vr);
        return numbers ? Floats (numbers, numbers + attribute->vm) : Floats {-99};
    }

    static Texts    Str (uint16_t vr, const std::string &text) { return Str (Value (vr, text).At ()); }
    static Integers Int (uint16_t vr, const std::string &text) { return Int (Value (vr, text).At ()); }
    static Floats   Float (uint16_t vr, const std::string &text) { return Float (Value (vr, text).At ()); }
    static Integers Int_Hex (uint16_t vr, const char *hex, uint8_t mode = 0) {
        return Int (Value (vr, Hex (hex), mode).At ());
    }
    static Floats Float_Hex (uint16_t vr, const char *hex, uint8_t mode = 0) {
        return Float (Value (vr, Hex (hex), mode).At ());
    }
};

static const uint16_t split_vrs[] = {VR_AE, VR_CS, VR_LO, VR_SH, VR_UI};
static const uint16_t whole_vrs[] = {VR_AS, VR_LT, VR_OB, VR_ST, VR_UN, VR_UT};

// --- texts -----------------------------------------------------------------

TEST_F (NemaReadValue, TextsAreCutAtBackslashes) {
    for (uint16_t vr : split_vrs) {
        EXPECT_EQ (Str (vr, "DERIVED\\SECONDARY\\AXIAL"), (Texts {"DERIVED", "SECONDARY", "AXIAL"}));
        EXPECT_EQ (Str (vr, "ONE"), Texts {"ONE"});
        EXPECT_EQ (Str (vr, "A\\"), (Texts {"A", ""}));
        EXPECT_EQ (Str (vr, "\\A"), (Texts {"", "A"}));
        EXPECT_EQ (Str (vr, "\\"), (Texts {"", ""}));
        EXPECT_EQ (Str (vr, "A\\\\B"), (Texts {"A", "", "B"}));
        EXPECT_EQ (Str (vr, " A \\ B "), (Texts {" A ", " B "}));
    }
    EXPECT_EQ (log.All (), "");
}

TEST_F (NemaReadValue, WholeTextsKeepTheirBackslashes) {
    for (uint16_t vr : whole_vrs) {
        EXPECT_EQ (Str (vr, "a\\b\\c "), Texts {"a\\b\\c "});
        EXPECT_EQ (Str (vr, "\\"), Texts {"\\"});
    }
    EXPECT_EQ (log.All (), "");
}

TEST_F (NemaReadValue, TextEndsAtItsFirstZero) {
    std::string value ("1.2\0\\A\0B\\\0C", 11);
    Value       text (VR_UI, value);
    EXPECT_EQ (Str (&text.attribute), (Texts {"1.2", "A", ""}));
    EXPECT_EQ (text.attribute.vm, 3);
    EXPECT_EQ (Str (&text.attribute, VR_UN), Texts {"1.2"});
    EXPECT_EQ (text.attribute.vm, 1);
}

TEST_F (NemaReadValue, DecodingLeavesTheValueAlone) {
    Value text (VR_CS, "A\\B");
    EXPECT_EQ (Str (&text.attribute).size (), 2u);
    EXPECT_EQ (memcmp (text.attribute.data, "A\\B", 3), 0);
    EXPECT_EQ (text.attribute.length, 3);
}

TEST_F (NemaReadValue, CountIsSetAnew) {
    Value text (VR_CS, "A\\B\\C");
    text.attribute.vm = 77;
    EXPECT_EQ (Str (&text.attribute).size (), 3u);
    EXPECT_EQ (text.attribute.vm, 3);
    text.attribute.vr_file = VR_DA;
    EXPECT_EQ (Str (&text.attribute), Texts {"none"});
    EXPECT_EQ (text.attribute.vm, 0);
}

TEST_F (NemaReadValue, MillionsOfEmptyTextsTakeLinearTime) {
    const size_t count = 4000000;
    Value        text (VR_LO, std::string (count, '\\'));
    char       **texts = V_Str (nullptr, &text.attribute, 0);
    ASSERT_NE (texts, nullptr);
    EXPECT_EQ (text.attribute.vm, static_cast<int32_t> (count) + 1);
    EXPECT_STREQ (texts[0], "");
    EXPECT_STREQ (texts[count], "");
    EXPECT_EQ (texts[count + 1], nullptr);

    text.attribute.vr_file = VR_DS;
    int32_t *integers      = V_Int (nullptr, &text.attribute, 0);
    ASSERT_NE (integers, nullptr);
    EXPECT_EQ (text.attribute.vm, static_cast<int32_t> (count) + 1);
    EXPECT_EQ (integers[count], 0);
    float *floats = V_Float (nullptr, &text.attribute, 0);
    ASSERT_NE (floats, nullptr);
    EXPECT_EQ (text.attribute.vm, static_cast<int32_t> (count) + 1);
    EXPECT_EQ (floats[count], 0.0f);
}

// --- integers --------------------------------------------------------------

TEST_F (NemaReadValue, IntegersHaveTheSignOfTheirVR) {
    EXPECT_EQ (Int_Hex (VR_SS, "FF FF 00 80 FF 7F"), (Integers {-1, -32768, 32767}));
    EXPECT_EQ (Int_Hex (VR_US, "FF FF 00 80 FF 7F"), (Integers {65535, 32768, 32767}));
    EXPECT_EQ (Int_Hex (VR_UH, "FF FF 00 80 FF 7F"), (Integers {65535, 32768, 32767}));
    EXPECT_EQ (Int_Hex (VR_OW, "FF FF 00 80 FF 7F"), (Integers {-1, -32768, 32767}));
    EXPECT_EQ (Int_Hex (VR_SL, "FF FF FF FF 01 00 00 80"), (Integers {-1, -2147483647}));
    EXPECT_EQ (Int_Hex (VR_UL, "FF FF FF FF 78 56 34 12"), (Integers {-1, 0x12345678}));
    EXPECT_EQ (Int_Hex (VR_AT, "08 00 60 00"), Integers {0x00600008});
}

TEST_F (NemaReadValue, IntegersFollowTheMode) {
    EXPECT_EQ (Int_Hex (VR_US, "12 34", MODE_BIG_ENDIAN), Integers {0x1234});
    EXPECT_EQ (Int_Hex (VR_US, "12 34", MODE_SWAB), Integers {0x1234});
    EXPECT_EQ (Int_Hex (VR_US, "34 12", MODE_BIG_ENDIAN | MODE_SWAB), Integers {0x1234});
    EXPECT_EQ (Int_Hex (VR_UL, "12 34 56 78", MODE_BIG_ENDIAN | MODE_EXPLICIT), Integers {0x12345678});
    EXPECT_EQ (Int_Hex (VR_UL, "56 78 12 34", MODE_SWAB), Integers {0x12345678});
    EXPECT_EQ (Int_Hex (VR_SS, "FF FE", MODE_BIG_ENDIAN), Integers {-2});
}

TEST_F (NemaReadValue, RestOfAnIntegerIsLeftOut) {
    EXPECT_EQ (Int_Hex (VR_US, "01 00 02"), Integers {1});
    EXPECT_EQ (Int_Hex (VR_UL, "01 00 00 00 02 00 00"), Integers {1});
}

TEST_F (NemaReadValue, ValueShorterThanANumberHasNone) {
    Value number (VR_SS, Hex ("01"));
    EXPECT_NE (V_Int (nullptr, &number.attribute, 0), nullptr);
    EXPECT_EQ (number.attribute.vm, 0);
    EXPECT_NE (V_Int (nullptr, &number.attribute, VR_UL), nullptr);
    EXPECT_EQ (number.attribute.vm, 0);
}

TEST_F (NemaReadValue, IntegersInTexts) {
    EXPECT_EQ (Int (VR_IS, "12\\-7\\ +3 \\\\x\\5x"), (Integers {12, -7, 3, 0, 0, 5}));
    EXPECT_EQ (Int (VR_IS, "2147483647\\2147483648\\-2147483649\\99999999999999999999"),
               (Integers {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MAX}));
    EXPECT_EQ (Int (VR_DS, "2.9\\-2.9"), (Integers {2, -2}));
    EXPECT_EQ (Int (VR_DS, "1e3\\\\abc\\.5\\-0.999"), (Integers {1000, 0, 0, 0, 0}));
    EXPECT_EQ (Int (VR_DS, "2147483647.5\\2147483648\\-2147483648.5\\-2147483649\\1e400"),
               (Integers {INT32_MAX, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN}));
    EXPECT_EQ (Int (VR_IS, std::string ("1\0\\2\0x", 6)), (Integers {1, 2}));
}

TEST_F (NemaReadValue, PlaceholderIsResolvedByTheLength) {
    EXPECT_EQ (Int_Hex (VR_RT, "FF FF"), Integers {65535});
    EXPECT_EQ (Int_Hex (VR_RT, "01 02 03 04"), Integers {0x04030201});
    EXPECT_EQ (log.All (), "");
    EXPECT_EQ (Int_Hex (VR_RT, "01 02 03 04 05 06"), Integers {-99});
    EXPECT_EQ (log.Count (LOG_TRACE4, "(0008,0060): bad VR value (OB) != DS,IS,US,UH,UL,SS,SL)"), 1);
    EXPECT_EQ (Int_Hex (VR_RT, "01"), Integers {-99});
    Value number (VR_LO, Hex ("FF FF"));
    EXPECT_EQ (Int (&number.attribute, VR_RT), Integers {65535});
}

// --- floating-point numbers ------------------------------------------------

TEST_F (NemaReadValue, FloatsFollowTheMode) {
    EXPECT_EQ (Float_Hex (VR_FL, "00 00 C0 3F 00 00 C0 BF"), (Floats {1.5f, -1.5f}));
    EXPECT_EQ (Float_Hex (VR_FL, "3F C0 00 00", MODE_BIG_ENDIAN), Floats {1.5f});
    EXPECT_EQ (Float_Hex (VR_FL, "00 00 3F C0", MODE_SWAB), Floats {1.5f});
    EXPECT_EQ (Float_Hex (VR_FD, "00 00 00 00 00 00 F8 3F 00 00 00 00 00 00 F8 BF"), (Floats {1.5f, -1.5f}));
    EXPECT_EQ (Float_Hex (VR_FD, "3F F8 00 00 00 00 00 00", MODE_BIG_ENDIAN), Floats {1.5f});
}

TEST_F (NemaReadValue, FloatsNeedAWholeNumberOfValues) {
    for (size_t length = 1; length <= 16; length++) {
        Value number (VR_FD, Bytes (length));
        EXPECT_EQ (V_Float (nullptr, &number.attribute, 0) != nullptr, length % 8 == 0) << length;
        EXPECT_EQ (number.attribute.vm, length % 8 ? 0 : static_cast<int32_t> (length / 8));
        EXPECT_EQ (V_Float (nullptr, &number.attribute, VR_FL) != nullptr, length % 4 == 0) << length;
        EXPECT_EQ (number.attribute.vm, length % 4 ? 0 : static_cast<int32_t> (length / 4));
    }
    EXPECT_EQ (log.All (), "");
}

TEST_F (NemaReadValue, DoubleBeyondAFloatIsInfinite) {
    EXPECT_EQ (Float_Hex (VR_FD, "9C 75 00 88 3C E4 37 7E"), Floats {INFINITY}); // 1e300
    EXPECT_EQ (Float_Hex (VR_FD, "9C 75 00 88 3C E4 37 FE"), Floats {-INFINITY});
    EXPECT_EQ (Float_Hex (VR_FD, "00 00 00 00 00 00 F0 7F"), Floats {INFINITY});
    EXPECT_EQ (Float_Hex (VR_FD, "00 00 00 E0 FF FF EF 47"), Floats {3.40282346638528859812e38f});
    EXPECT_EQ (Float_Hex (VR_FD, "59 F3 F8 C2 1F 6E A5 01"), Floats {0.0f}); // 1e-300
    Floats not_a_number = Float_Hex (VR_FD, "00 00 00 00 00 00 F8 7F");
    ASSERT_EQ (not_a_number.size (), 1u);
    EXPECT_TRUE (isnan (not_a_number[0]));
}

TEST_F (NemaReadValue, FloatsInTexts) {
    EXPECT_EQ (Float (VR_IS, "7"), Floats {7.0f});
    EXPECT_EQ (Float (VR_IS, "7.9\\-3\\99999999999\\"), (Floats {7.0f, -3.0f, 2147483648.0f, 0.0f}));
    EXPECT_EQ (Float (VR_DS, "0.5\\ -1e2 \\\\x"), (Floats {0.5f, -100.0f, 0.0f, 0.0f}));
    EXPECT_EQ (Float (VR_DS, "1e39\\-1e999"), (Floats {INFINITY, -INFINITY}));
}

// --- VRs -------------------------------------------------------------------

static std::string Names (const std::vector<uint16_t> &vrs) {
    std::string names;
    for (uint16_t vr : vrs) names += std::string {Code_First (vr, '0'), Code_Second (vr, '0'), ' '};
    return names;
}

TEST_F (NemaReadValue, EachDecoderAcceptsItsVRsOnly) {
    struct {
        const char *accepted;
        const char *trace;
    } decoders[] = {
        {"AE AS CS LO LT OB SH ST UI UN UT ", "AE,AS,CS,LO,LT,SH,ST,UI,UT"},
        {"AT DS IS OW SL SS UH UL US ", "DS,IS,US,UH,UL,SS,SL"},
        {"DS FD FL IS ", "IS,DS,FL,FD"},
    };
    for (int decoder = 0; decoder < 3; decoder++) {
        std::vector<uint16_t> accepted;
        for (char first = 'A'; first <= 'Z'; first++)
            for (char second = 'A'; second <= 'Z'; second++) {
                Value value (Code (first, second), "12345678");
                log.Clear ();
                const void *result = decoder == 0 ? static_cast<const void *> (V_Str (nullptr, &value.attribute, 0))
                                     : decoder == 1
                                         ? static_cast<const void *> (V_Int (nullptr, &value.attribute, 0))
                                         : static_cast<const void *> (V_Float (nullptr, &value.attribute, 0));
                if (result) {
                    accepted.push_back (value.attribute.vr_file);
                    EXPECT_GT (value.attribute.vm, 0);
                    EXPECT_EQ (log.All (), "");
                    continue;
                }
                std::string shown {first, second};
                if (decoder == 1 && shown == "RT") shown = "OB";
                EXPECT_EQ (value.attribute.vm, 0);
                ASSERT_EQ (log.lines.size (), 2u);
                EXPECT_EQ (log.lines[0].kind, LOG_TRACE4);
                EXPECT_EQ (log.lines[0].text.rfind ("File:NEMA_Read_Value, Line:", 0), 0u);
                EXPECT_EQ (log.lines[1].kind, LOG_TRACE4);
                EXPECT_EQ (log.lines[1].text,
                           "(0008,0060): bad VR value (" + shown + ") != " + decoders[decoder].trace + ")");
            }
        EXPECT_EQ (Names (accepted), decoders[decoder].accepted);
    }
}

TEST_F (NemaReadValue, VRIsTheCallersThenTheStreamsThenTheDictionarys) {
    Value value (VR_CS, "1\\2");
    value.attribute.vr = VR_LT;
    EXPECT_EQ (Str (&value.attribute), (Texts {"1", "2"}));
    EXPECT_EQ (Str (&value.attribute, VR_UT), Texts {"1\\2"});
    EXPECT_EQ (Int (&value.attribute, VR_IS), (Integers {1, 2}));
    EXPECT_EQ (Float (&value.attribute, VR_DS), (Floats {1, 2}));
    value.attribute.vr_file = 0;
    EXPECT_EQ (Str (&value.attribute), Texts {"1\\2"});
    value.attribute.vr = VR_IS;
    EXPECT_EQ (Int (&value.attribute), (Integers {1, 2}));
    EXPECT_EQ (Float (&value.attribute), (Floats {1, 2}));
    EXPECT_EQ (log.All (), "");
    value.attribute.vr = 0;
    EXPECT_EQ (Str (&value.attribute), Texts {"none"});
    EXPECT_EQ (log.Count (LOG_TRACE4, "bad VR value (00) != AE,"), 1);
}

// --- nothing to decode -----------------------------------------------------

TEST_F (NemaReadValue, ValueWithoutBytesIsNone) {
    for (int32_t length : {0, 1, 1024, -1, -2, INT32_MIN}) {
        Value value (0, "");
        value.attribute.length = length;
        for (uint16_t vr : {VR_LO, VR_UN, VR_IS, VR_US, VR_FD, VR_DS, VR_RT, VR_PN}) {
            value.attribute.vm = 5;
            EXPECT_EQ (V_Str (nullptr, &value.attribute, vr), nullptr);
            EXPECT_EQ (value.attribute.vm, 0);
            value.attribute.vm = 5;
            EXPECT_EQ (V_Int (nullptr, &value.attribute, vr), nullptr);
            EXPECT_EQ (value.attribute.vm, 0);
            value.attribute.vm = 5;
            EXPECT_EQ (V_Float (nullptr, &value.attribute, vr), nullptr);
            EXPECT_EQ (value.attribute.vm, 0);
        }
    }
    EXPECT_EQ (log.All (), "");
}

TEST_F (NemaReadValue, BytesOfNoLengthAreNone) {
    for (int32_t length : {0, -1, INT32_MIN}) {
        Value value (VR_IS, "12");
        value.attribute.length = length;
        EXPECT_EQ (V_Str (nullptr, &value.attribute, VR_LO), nullptr);
        EXPECT_EQ (V_Int (nullptr, &value.attribute, 0), nullptr);
        EXPECT_EQ (V_Float (nullptr, &value.attribute, 0), nullptr);
        EXPECT_EQ (value.attribute.vm, 0);
    }
    EXPECT_EQ (log.All (), "");
}

// --- rings -----------------------------------------------------------------

TEST_F (NemaReadValue, ResultStaysForTheCallsOfOneRound) {
    Value    one (VR_US, Hex ("01 00 02 00")), other (VR_US, Hex ("09 00 09 00"));
    int32_t *first = V_Int (nullptr, &one.attribute, 0);
    for (int call = 2; call <= VALUE_RING_SLOTS; call++)
        ASSERT_NE (V_Int (nullptr, &other.attribute, 0), first) << call;
    EXPECT_EQ (first[0], 1);
    EXPECT_EQ (first[1], 2);
    EXPECT_EQ (V_Int (nullptr, &other.attribute, 0), first); // The 129th call.
    EXPECT_EQ (first[0], 9);
}

TEST_F (NemaReadValue, TextsStayForTheCallsOfOneRound) {
    Value  one (VR_CS, "ONE\\TWO"), other (VR_CS, "X\\Y");
    char **first = V_Str (nullptr, &one.attribute, 0);
    for (int call = 2; call <= VALUE_RING_SLOTS; call++)
        ASSERT_NE (V_Str (nullptr, &other.attribute, 0), first) << call;
    EXPECT_STREQ (first[0], "ONE");
    EXPECT_STREQ (first[1], "TWO");
    EXPECT_EQ (V_Str (nullptr, &other.attribute, 0), first);
    EXPECT_STREQ (first[0], "X");
}

TEST_F (NemaReadValue, FloatsStayForTheCallsOfOneRound) {
    Value  one (VR_DS, "1\\2"), other (VR_DS, "9\\9");
    float *first = V_Float (nullptr, &one.attribute, 0);
    for (int call = 2; call <= VALUE_RING_SLOTS; call++)
        ASSERT_NE (V_Float (nullptr, &other.attribute, 0), first) << call;
    EXPECT_EQ (first[1], 2.0f);
    EXPECT_EQ (V_Float (nullptr, &other.attribute, 0), first);
    EXPECT_EQ (first[1], 9.0f);
}

TEST_F (NemaReadValue, EveryCallTakesASlotOfItsOwnRing) {
    Value    one (VR_US, Hex ("01 00")), empty (VR_US, ""), bad (VR_PN, "x");
    int32_t *first = V_Int (nullptr, &one.attribute, 0);
    for (int call = 0; call < 500; call++) {
        V_Str (nullptr, &one.attribute, VR_LO);
        V_Float (nullptr, &one.attribute, VR_IS);
    }
    for (int call = 2; call <= VALUE_RING_SLOTS; call++)
        EXPECT_EQ (V_Int (nullptr, call % 2 ? &empty.attribute : &bad.attribute, 0), nullptr);
    EXPECT_EQ (first[0], 1);
    EXPECT_EQ (V_Int (nullptr, &one.attribute, 0), first);
}

TEST_F (NemaReadValue, CapacityOfASlotIsKept) {
    Value    one (VR_US, Bytes (2000)), small (VR_US, Hex ("05 00"));
    int32_t *first = V_Int (nullptr, &one.attribute, 0);
    for (int call = 2; call <= VALUE_RING_SLOTS; call++) V_Int (nullptr, &small.attribute, 0);
    Memory_Fail_At (1);
    EXPECT_EQ (V_Int (nullptr, &small.attribute, 0), first);
    EXPECT_EQ (Memory_Failed (), 0);
    Memory_Fail_At (0);
    EXPECT_EQ (small.attribute.vm, 1);
    EXPECT_EQ (first[0], 5);
}

TEST_F (NemaReadValue, FreedRingsHoldNothing) {
    NEMA_Value_Rings_Free ();
    long live = Memory_Live ();
    {
        Value text (VR_IS, "1\\2\\3");
        V_Str (nullptr, &text.attribute, VR_LO);
        V_Int (nullptr, &text.attribute, 0);
        V_Float (nullptr, &text.attribute, 0);
        EXPECT_GT (Memory_Live (), live + 1);
        NEMA_Value_Rings_Free ();
        EXPECT_EQ (Memory_Live (), live + 1);
        EXPECT_EQ (Int (&text.attribute), (Integers {1, 2, 3}));
    }
    NEMA_Value_Rings_Free ();
    EXPECT_EQ (Memory_Live (), live);
}

TEST_F (NemaReadValue, RingIsAdvancedInTheProtectedRegion) {
    System_Mutex *mutex = System_Mutex_Create ();
    ASSERT_NE (mutex, nullptr);
    Value number (VR_IS, "1");
    Mutex_Access_Install (mutex, 20);

    // Free: entered and left, so that another thread can enter.
    EXPECT_EQ (Int (&number.attribute), Integers {1});
    EXPECT_EQ (log.All (), "");

    // Held by another thread: each call waits, reports and goes on.
    std::promise<System_Wait> held;
    std::promise<void>        done;
    std::thread               holder ([&] {
        held.set_value (System_Mutex_Wait (mutex, 1000));
        done.get_future ().wait ();
        System_Mutex_Release (mutex);
    });
    EXPECT_EQ (held.get_future ().get (), SYSTEM_WAIT_ENTERED);
    EXPECT_EQ (Int (&number.attribute), Integers {1});
    EXPECT_EQ (log.Count (LOG_WARNING, "Critical Section access deadlock"), 1);
    EXPECT_EQ (Str (&number.attribute, VR_LO), Texts {"1"});
    EXPECT_EQ (log.Count (LOG_WARNING, "Critical Section access deadlock"), 2);
    EXPECT_EQ (Float (&number.attribute), Floats {1});
    EXPECT_EQ (log.Count (LOG_WARNING, "Critical Section access deadlock"), 3);
    done.set_value ();
    holder.join ();
    Mutex_Access_Install (nullptr, MUTEX_ACCESS_WAIT);
    System_Mutex_Destroy (mutex);
}

// --- failing memory --------------------------------------------------------

// The decoder's messages and counts when its first, second, ... request for memory fails, each time in fresh rings.
struct Failure {
    std::string message;
    int32_t     vm;
    bool        operator== (const Failure &other) const { return message == other.message && vm == other.vm; }
};

static void PrintTo (const Failure &failure, std::ostream *out) { *out << failure.vm << ": " << failure.message; }

template <typename Decoder>
static std::vector<Failure> Failures (Log_Recorder *log, Attribute *attribute, Decoder decoder) {
    std::vector<Failure> failures;
    for (long n = 1; n < 100; n++) {
        NEMA_Value_Rings_Free ();
        long live = Memory_Live ();
        log->Clear ();
        Memory_Fail_At (n);
        auto result = decoder (nullptr, attribute, uint16_t (0));
        int  failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (result == nullptr, failed == 1);
        if (!failed) break;
        EXPECT_EQ (log->lines.size (), 1u);
        EXPECT_EQ (log->lines[0].kind, LOG_ERROR);
        std::string text = log->lines[0].text;
        EXPECT_NE (text.find ("of NEMA_Read_Value \n"), std::string::npos);
        failures.push_back ({text.substr (text.find ('\n') + 1), attribute->vm});

        // The slot is as good as before.
        EXPECT_NE (decoder (nullptr, attribute, uint16_t (0)), nullptr);
        NEMA_Value_Rings_Free ();
        EXPECT_EQ (Memory_Live (), live);
    }
    return failures;
}

TEST_F (NemaReadValue, EachFailedRequestOfTextsIsReported) {
    Value split (VR_CS, "A\\BB\\C");
    EXPECT_EQ (Failures (&log, &split.attribute, V_Str),
               (std::vector<Failure> {{"memory error in realloc (var=V_Str[cc][tag->vm], dim=7x1)", 0},
                                      {"memory error in realloc (var=V_Str[cc], dim=2x8)", 0},
                                      {"memory error in realloc (var=V_Str[cc], dim=3x8)", 1},
                                      {"memory error in realloc (var=V_Str[cc], dim=4x8)", 2}}));
    Value whole (VR_LT, "A\\BB\\C");
    EXPECT_EQ (Failures (&log, &whole.attribute, V_Str),
               (std::vector<Failure> {{"memory error in realloc (var=(V_Str[cc][tag->vm]), dim=7x1)", 0},
                                      {"memory error in realloc (var=V_Str[cc], dim=2x8)", 0}}));
}

TEST_F (NemaReadValue, EachFailedRequestOfIntegersIsReported) {
    Value binary (VR_US, Bytes (6));
    EXPECT_EQ (Failures (&log, &binary.attribute, V_Int),
               (std::vector<Failure> {{"memory error in realloc (var=V_Int[cc], dim=3x4)", 0}}));
    Value texts (VR_IS, "1\\2\\3");
    EXPECT_EQ (Failures (&log, &texts.attribute, V_Int),
               (std::vector<Failure> {{"memory error in malloc (var=buf, dim=6x1)", 0},
                                      {"memory error in realloc (var=V_Int[cc], dim=1x4)", 0},
                                      {"memory error in realloc (var=V_Int[cc], dim=2x4)", 1},
                                      {"memory error in realloc (var=V_Int[cc], dim=3x4)", 2}}));
}

TEST_F (NemaReadValue, EachFailedRequestOfFloatsIsReported) {
    Value binary (VR_FD, Bytes (16));
    EXPECT_EQ (Failures (&log, &binary.attribute, V_Float),
               (std::vector<Failure> {{"memory error in realloc (var=V_Float[cc], dim=1x4)", 0},
                                      {"memory error in realloc (var=V_Float[cc], dim=2x4)", 1}}));
    Value texts (VR_DS, "1\\2");
    EXPECT_EQ (Failures (&log, &texts.attribute, V_Float),
               (std::vector<Failure> {{"memory error in malloc (var=buf, dim=4x1)", 0},
                                      {"memory error in realloc (var=V_Float[cc], dim=1x4)", 0},
                                      {"memory error in realloc (var=V_Float[cc], dim=2x4)", 1}}));
}

TEST_F (NemaReadValue, FailedSlotKeepsItsOlderResult) {
    Value    one (VR_US, Hex ("01 00 02 00")), more (VR_US, Bytes (100));
    int32_t *first = V_Int (nullptr, &one.attribute, 0);
    for (int call = 2; call <= VALUE_RING_SLOTS; call++) V_Int (nullptr, &one.attribute, 0);
    Memory_Fail_At (1);
    EXPECT_EQ (V_Int (nullptr, &more.attribute, 0), nullptr);
    Memory_Fail_At (0);
    EXPECT_EQ (first[1], 2);
}

// --- loading on demand -----------------------------------------------------

// A source with 3000 digits behind 10 other bytes, registered as where missing values are.
class NemaReadValueFrom : public NemaReadValue, public testing::WithParamInterface<int> {
protected:
    NemaReadValueFrom () : opened (GetParam (), From_Text (std::string (10, 'x') + std::string (3000, '7'))) {
        File_Close (opened.source.file);
        opened.source.file = nullptr;
        Register ();
        attribute.vr_file  = VR_LO;
        attribute.length   = 3000;
        attribute.pos_data = 10;
        live               = Memory_Live ();
    }
    ~NemaReadValueFrom () override { Value_Release (&attribute); }

    void Register () { NEMA_Source_Register (GetParam (), opened.source.name, opened.source.base, opened.source.size); }

    // A failure leaves no value behind.
    void Expect_None () {
        EXPECT_EQ (V_Str (nullptr, &attribute, 0), nullptr);
        EXPECT_EQ (attribute.data, nullptr);
        EXPECT_EQ (attribute.vm, 0);
        EXPECT_EQ (Memory_Live (), live);
    }

    Opened_Source opened;
    Attribute     attribute = {};
    long          live      = 0;
};

INSTANTIATE_TEST_SUITE_P (Sources, NemaReadValueFrom, testing::Values (NEMA_FILE, NEMA_MEMORY, 7),
                          [] (const auto &kind) {
                              return kind.param == NEMA_FILE ? "File" : kind.param == NEMA_MEMORY ? "Memory" : "Other";
                          });

TEST_P (NemaReadValueFrom, MissingValueIsLoaded) {
    EXPECT_EQ (Str (&attribute), Texts {std::string (3000, '7')});
    EXPECT_EQ (log.All (), "11: Reading missing: 3000 bytes at 10\n");
    ASSERT_NE (attribute.data, nullptr);
    EXPECT_EQ (Value_Is_Mapped (&attribute), 0);
    EXPECT_EQ (attribute.length, 3000);

    // From now on it is there.
    NEMA_Source_Register (0, nullptr, nullptr, 0);
    log.Clear ();
    EXPECT_EQ (Str (&attribute), Texts {std::string (3000, '7')});
    EXPECT_EQ (log.All (), "");
}

TEST_P (NemaReadValueFrom, EveryDecoderLoads) {
    attribute.vr_file = VR_US;
    EXPECT_EQ (Int (&attribute), Integers (1500, 0x3737));
    Value_Release (&attribute);
    attribute.vr_file = VR_FL;
    EXPECT_EQ (Float (&attribute).size (), 750u);
    Value_Release (&attribute);
    attribute.vr_file = VR_PN; // Not decoded, but loaded.
    EXPECT_EQ (Str (&attribute), Texts {"none"});
    EXPECT_NE (attribute.data, nullptr);
}

TEST_P (NemaReadValueFrom, OnlyLongValuesAreLoaded) {
    attribute.length = 1024;
    Expect_None ();
    EXPECT_EQ (log.All (), "");
    attribute.length = 1025;
    EXPECT_EQ (Str (&attribute), Texts {std::string (1025, '7')});
    EXPECT_EQ (log.All (), "11: Reading missing: 1025 bytes at 10\n");
}

TEST_P (NemaReadValueFrom, NothingIsLoadedFromNowhere) {
    NEMA_Source_Register (0, nullptr, nullptr, 0);
    Expect_None ();
    EXPECT_EQ (log.All (), "11: Reading missing: 3000 bytes at 10\n");
}

TEST_P (NemaReadValueFrom, ValueBeyondTheEndIsReported) {
    struct {
        uint32_t position;
        int32_t  length;
        int      left;
    } values[] = {
        {11, 3000, 2999}, {2000, 1025, 1010},    {3010, 1025, 0},
        {5000, 1025, 0},  {0xFFFFFFFF, 1025, 0}, {0, INT32_MAX, 3010},
    };
    for (const auto &value : values) {
        log.Clear ();
        attribute.pos_data = value.position;
        attribute.length   = value.length;
        Expect_None ();
        EXPECT_EQ (log.Text (LOG_WARNING), "End of File while reading: (" + std::to_string (value.left) + " /vs/ " +
                                               std::to_string (value.length) + ") (" + opened.Name () + ")\n");
        EXPECT_EQ (log.Count (LOG_TRACE1, "file:NEMA_Read_Data line:"), 1);
    }
}

TEST_P (NemaReadValueFrom, ValueBeyondTheEndAsksForNoMemory) {
    attribute.length = INT32_MAX;
    Memory_Fail_At (1 + (GetParam () == NEMA_FILE)); // Behind the buffer of an open file.
    Expect_None ();
    EXPECT_EQ (Memory_Failed (), 0);
    Memory_Fail_At (0);
    EXPECT_EQ (log.Count (LOG_ERROR), 0);
}

TEST_P (NemaReadValueFrom, FailedMemoryIsReported) {
    long of_file = GetParam () == NEMA_FILE; // An open file has a buffer.
    Memory_Fail_At (1 + of_file);
    EXPECT_EQ (V_Str (nullptr, &attribute, 0), nullptr);
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_EQ (log.Count (LOG_ERROR, "of NEMA_Read_Value \nmemory error in malloc (var=tag->data, dim=3000x1)"), 1);
    EXPECT_EQ (attribute.data, nullptr);
    EXPECT_EQ (Memory_Live (), live);
    EXPECT_EQ (Str (&attribute), Texts {std::string (3000, '7')});
}

class NemaReadValueFile : public NemaReadValueFrom {};

INSTANTIATE_TEST_SUITE_P (Sources, NemaReadValueFile, testing::Values (NEMA_FILE),
                          [] (const auto &) { return "File"; });

TEST_P (NemaReadValueFile, LargeValueIsReadAndNotMapped) {
    Temporary_Directory directory;
    std::string         name = directory.Write ("large.dcm", std::string (NEMA_MAP_LENGTH + 10, '7'));
    NEMA_Source_Register (NEMA_FILE, name.c_str (), nullptr, 0);
    attribute.length = NEMA_MAP_LENGTH;
    EXPECT_EQ (Str (&attribute).size (), 1u);
    EXPECT_EQ (Value_Is_Mapped (&attribute), 0);
}

TEST_P (NemaReadValueFile, FileThatCannotBeOpenedIsReported) {
    File_Fail_At (FILE_OPEN, 1, ERROR_CODE);
    Expect_None ();
    ASSERT_EQ (log.lines.size (), 5u);
    EXPECT_EQ (log.lines[0].text, "Reading missing: 3000 bytes at 10");
    EXPECT_EQ (log.lines[1].kind, LOG_TRACE1);
    EXPECT_EQ (log.lines[1].text.rfind ("file:NEMA_Read_Value line:", 0), 0u);
    EXPECT_EQ (log.lines[2].kind, LOG_WARNING);
    EXPECT_EQ (log.lines[2].text, "\xF1\x04"
                                  "ERROR:\x02 Unable to open file");
    EXPECT_EQ (log.lines[3].kind, LOG_WARNING);
    EXPECT_EQ (log.lines[3].text, Error_Text_Of (ERROR_CODE));
    EXPECT_EQ (log.lines[4].kind, LOG_WARNING);
    EXPECT_EQ (log.lines[4].text, "file: (" + opened.Name () + ")");
}

TEST_P (NemaReadValueFile, FileThatIsGoneIsReported) {
    std::string name = opened.Name () + ".gone";
    NEMA_Source_Register (NEMA_FILE, name.c_str (), nullptr, 0);
    Expect_None ();
    EXPECT_EQ (log.Count (LOG_WARNING, "ERROR: Unable to open file"), 1);
    EXPECT_EQ (log.Count (LOG_WARNING, "file: (" + name + ")"), 1);
}

TEST_P (NemaReadValueFile, FileWithoutANameIsNowhere) {
    NEMA_Source_Register (NEMA_FILE, nullptr, nullptr, 0);
    Expect_None ();
    EXPECT_EQ (log.Count (LOG_WARNING), 0);
}

TEST_P (NemaReadValueFile, FailedMoveIsReported) {
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    Expect_None ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "\xF1\x04"
                                       "ERROR:\x02 while seeking pos 10"));
    EXPECT_TRUE (log.Has (LOG_WARNING, Error_Text_Of (ERROR_CODE)));
    EXPECT_EQ (log.Count (LOG_TRACE1, "file:NEMA_Read_Value line:"), 1);
}

TEST_P (NemaReadValueFile, FailedReadIsReported) {
    File_Fail_At (FILE_READ, 1, ERROR_CODE);
    Expect_None ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "Error reading file " + opened.Name ()));
    EXPECT_TRUE (log.Has (LOG_WARNING, Error_Text_Of (ERROR_CODE)));
}

TEST_P (NemaReadValueFile, FileThatShrinksIsReported) {
    File_Fail_At (FILE_READ, 1, 0);
    Expect_None ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "End of File while reading: (1500 /vs/ 3000) (" + opened.Name () + ")"));
}

TEST_P (NemaReadValueFile, FileWithoutMemoryForItsBufferIsReported) {
    Memory_Fail_At (1);
    Expect_None ();
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_EQ (log.Count (LOG_ERROR, "memory error in malloc"), 1);
    EXPECT_EQ (log.Count (LOG_WARNING, "Unable to open file"), 1);
}
