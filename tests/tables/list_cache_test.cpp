#include "tables/list_cache.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/lists.h"
#include "util/memory.h"

static const char *const MODULE = "list_cache_test";

struct Cache {
    std::vector<List_Cache_Name> names;
    std::vector<Attribute *>     lists;
    List_Cache                   cache = {};

    explicit Cache (size_t room) : names (room), lists (room) {
        cache.names = names.data ();
        cache.lists = lists.data ();
    }
    ~Cache () { List_Cache_Empty (nullptr, &cache); }
    int32_t Add (const std::string &name) {
        return List_Cache_Add (&cache, Memory_Strdup (nullptr, HERE ("name", 0, 0), name.c_str ()));
    }
};

TEST (ListCache, FindsEveryNameAlsoWhenBucketsAreShared) {
    static const int COUNT = 2 * LIST_CACHE_BUCKETS;
    Cache            names (COUNT);
    for (int i = 0; i < COUNT; i++) {
        EXPECT_EQ (-1, List_Cache_Find (&names.cache, std::to_string (i).c_str ()));
        EXPECT_EQ (i, names.Add (std::to_string (i)));
    }
    for (int i = 0; i < COUNT; i++) EXPECT_EQ (i, List_Cache_Find (&names.cache, std::to_string (i).c_str ()));
    EXPECT_EQ (-1, List_Cache_Find (&names.cache, "-1"));
    EXPECT_EQ (-1, List_Cache_Find (&names.cache, ""));
}

TEST (ListCache, EmptyingReleasesNamesAndLists) {
    long  live = Memory_Live ();
    Cache names (2);
    names.cache.lists[names.Add ("b")] = nullptr;
    Attribute *list                    = nullptr;
    {
        Test_List made;
        made.Add (0x0010, 0x0010, "PN", "Doe^John");
        list       = made.first;
        made.first = nullptr;
    }
    names.cache.lists[names.Add ("a")] = list;
    EXPECT_LT (live, Memory_Live ());
    List_Cache_Empty (nullptr, &names.cache);
    EXPECT_EQ (live, Memory_Live ());
    EXPECT_EQ (-1, List_Cache_Find (&names.cache, "a"));
    EXPECT_EQ (0, names.Add ("a")) << "there is room again";
    EXPECT_EQ (nullptr, names.cache.lists[0]);
}
