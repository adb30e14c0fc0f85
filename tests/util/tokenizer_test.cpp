#include "util/tokenizer.h"

#include <string.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

// All tokens with bars between them.
static std::string Tokens (std::string text, const char *delimiters = " \t\n") {
    std::string all;
    for (char *token = Tokenizer_Next (&text[0], delimiters); token; token = Tokenizer_Next (nullptr, delimiters))
        all += std::string (all.empty () ? "" : "|") + token;
    return all;
}

TEST (Tokenizer, SplitsAtAnyRunOfDelimiters) {
    EXPECT_EQ (Tokens ("one two\tthree\nfour"), "one|two|three|four");
    EXPECT_EQ (Tokens ("  one \t two  "), "one|two");
    EXPECT_EQ (Tokens ("one"), "one");
    EXPECT_EQ (Tokens (""), "");
    EXPECT_EQ (Tokens (" \t\n "), "");
    EXPECT_EQ (Tokens ("a,b;c", ",;"), "a|b|c");
    EXPECT_EQ (Tokens ("a b", ""), "a b");
}

TEST (Tokenizer, DelimitersInQuotesBelongToTheToken) {
    EXPECT_EQ (Tokens ("\"one two\" three"), "\"one two\"|three");
    EXPECT_EQ (Tokens ("a\"b c\"d e"), "a\"b c\"d|e");
    EXPECT_EQ (Tokens ("\"open to the end"), "\"open to the end");
    EXPECT_EQ (Tokens ("\"\" a"), "\"\"|a");
    EXPECT_EQ (Tokens ("\"a\" \"b\""), "\"a\"|\"b\"");
    EXPECT_EQ (Tokens ("\""), "\"");
}

TEST (Tokenizer, DelimitersMayChangeFromTokenToToken) {
    char text[] = "key=value rest";
    EXPECT_STREQ (Tokenizer_Next (text, "="), "key");
    EXPECT_STREQ (Tokenizer_Next (nullptr, " "), "value");
    EXPECT_STREQ (Tokenizer_Next (nullptr, ""), "rest");
    EXPECT_EQ (Tokenizer_Next (nullptr, " "), nullptr);
    EXPECT_EQ (Tokenizer_Next (nullptr, " "), nullptr);
}

TEST (Tokenizer, NewTextStartsAnew) {
    char first[] = "a b c", second[] = "x y";
    EXPECT_STREQ (Tokenizer_Next (first, " "), "a");
    EXPECT_STREQ (Tokenizer_Next (second, " "), "x");
    EXPECT_STREQ (Tokenizer_Next (nullptr, " "), "y");
    EXPECT_EQ (Tokenizer_Next (nullptr, " "), nullptr);
}

// A thread that runs what it is given, one piece at a time, while the caller waits.
class Worker {
public:
    Worker () : thread ([this] { Loop (); }) {}

    ~Worker () {
        Run (nullptr);
        thread.join ();
    }

    void Run (std::function<void ()> what) {
        std::unique_lock<std::mutex> lock (mutex);
        work = what;
        busy = true;
        changed.notify_all ();
        changed.wait (lock, [this] { return !busy; });
    }

    std::string Next (char *text) {
        std::string token;
        Run ([&] {
            char *found = Tokenizer_Next (text, " ");
            token       = found ? found : "(none)";
        });
        return token;
    }

private:
    void Loop () {
        std::unique_lock<std::mutex> lock (mutex);
        for (bool more = true; more;) {
            changed.wait (lock, [this] { return busy; });
            if (work) work ();
            else more = false;
            busy = false;
            changed.notify_all ();
        }
    }

    std::mutex              mutex;
    std::condition_variable changed;
    std::function<void ()>  work;
    bool                    busy = false;
    std::thread             thread;
};

TEST (Tokenizer, ThreadsScanTheirOwnTexts) {
    Worker one, two;
    char   first[] = "a b c", second[] = "x y z";
    EXPECT_EQ (one.Next (first), "a");
    EXPECT_EQ (two.Next (nullptr), "(none)");
    EXPECT_EQ (two.Next (second), "x");
    EXPECT_EQ (one.Next (nullptr), "b");
    EXPECT_EQ (two.Next (nullptr), "y");
    EXPECT_EQ (one.Next (nullptr), "c");
    EXPECT_EQ (two.Next (nullptr), "z");
    EXPECT_EQ (one.Next (nullptr), "(none)");
    EXPECT_EQ (two.Next (nullptr), "(none)");
}

TEST (Tokenizer, The129thThreadTakesTheFirstOnesPlace) {
    std::vector<Worker>      workers (TOKENIZER_SLOTS + 1);
    std::vector<std::string> texts (TOKENIZER_SLOTS + 1);
    for (int i = 0; i <= TOKENIZER_SLOTS; i++)
        texts[static_cast<size_t> (i)] = "a" + std::to_string (i) + " b" + std::to_string (i);

    for (size_t i = 0; i < TOKENIZER_SLOTS; i++) EXPECT_EQ (workers[i].Next (&texts[i][0]), "a" + std::to_string (i));
    EXPECT_EQ (workers[1].Next (nullptr), "b1");
    EXPECT_EQ (workers[TOKENIZER_SLOTS].Next (&texts[TOKENIZER_SLOTS][0]), "a128");
    EXPECT_EQ (workers[TOKENIZER_SLOTS].Next (nullptr), "b128");
    EXPECT_EQ (workers[TOKENIZER_SLOTS - 1].Next (nullptr), "b127");

    // The first thread's scan is gone. It takes the next place, the second thread's, and starts without a text.
    EXPECT_EQ (workers[0].Next (nullptr), "(none)");
    EXPECT_EQ (workers[2].Next (nullptr), "b2");
}

// --- quotes ----------------------------------------------------------------

static std::string Unquoted (std::string text) {
    char *result = Text_Unquote (&text[0]);
    EXPECT_EQ (result, &text[0]);
    return result;
}

TEST (Tokenizer, UnquoteRemovesAPairOfQuotes) {
    EXPECT_EQ (Unquoted ("\"a b\""), "a b");
    EXPECT_EQ (Unquoted ("\"\""), "");
    EXPECT_EQ (Unquoted ("\"a \"b\" c\""), "a \"b\" c");
    EXPECT_EQ (Unquoted ("\"\"a\"\""), "\"a\"");
}

TEST (Tokenizer, UnquoteNeedsTheFirstQuote) {
    EXPECT_EQ (Unquoted ("abc"), "abc");
    EXPECT_EQ (Unquoted ("abc\""), "abc\"");
    EXPECT_EQ (Unquoted (" \"abc\""), " \"abc\"");
    EXPECT_EQ (Unquoted (""), "");
    EXPECT_EQ (Unquoted ("\"abc"), "abc");
    EXPECT_EQ (Unquoted ("\""), "");
}

TEST (Tokenizer, UnquoteLeavesTextsOfMoreThan1024Characters) {
    std::string limit = "\"" + std::string (1022, 'x') + "\"", over = "\"" + std::string (1023, 'x') + "\"";
    EXPECT_EQ (Unquoted (limit), std::string (1022, 'x'));
    EXPECT_EQ (Unquoted (over), over);
}
