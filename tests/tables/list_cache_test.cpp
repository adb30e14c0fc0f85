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
        List_Cache_Room (&cache, static_cast<int32_t> (room));
    }
    ~Cache () { List_Cache_Empty (nullptr, &cache); }
    int32_t Add (const std::string &name) {
        return List_Cache_Add (&cache, Memory_Strdup (nullptr, HERE ("name", 0, 0), name.c_str ()));
    }
};

static void Expect_Numbers (Cache *names, int count) {
    for (int i = 0; i < count; i++) EXPECT_EQ (i, List_Cache_Find (&names->cache, std::to_string (i).c_str ()));
    EXPECT_EQ (-1, List_Cache_Find (&names->cache, std::to_string (count).c_str ()));
    EXPECT_EQ (-1, List_Cache_Find (&names->cache, "-1"));
    EXPECT_EQ (-1, List_Cache_Find (&names->cache, ""));
}

TEST (ListCache, FindsEveryNameAlsoWhenBucketsAreShared) {
    for (int count : {1, 2, 3, 1000, 8192, 10240}) {
        Cache names (static_cast<size_t> (count));
        for (int i = 0; i < count; i++) {
            EXPECT_EQ (-1, List_Cache_Find (&names.cache, std::to_string (i).c_str ()));
            EXPECT_EQ (i, names.Add (std::to_string (i)));
        }
        Expect_Numbers (&names, count);
    }
}

TEST (ListCache, NothingIsInACacheWithoutRoom) {
    List_Cache cache = {};
    EXPECT_EQ (-1, List_Cache_Find (&cache, "a"));
    List_Cache_Empty (nullptr, &cache);
}

TEST (ListCache, FindsEveryNameWhenThereIsMoreRoom) {
    Cache names (1);
    int   count = 0;
    for (size_t room = 1; room <= 1024; room *= 2) {
        names.names.resize (room);
        names.lists.resize (room);
        for (List_Cache_Name &name : names.names) name.bucket = -1; // As new memory may be.
        names.cache.names = names.names.data ();
        names.cache.lists = names.lists.data ();
        List_Cache_Room (&names.cache, static_cast<int32_t> (room));
        Expect_Numbers (&names, count);
        for (; count < static_cast<int> (room); count++) EXPECT_EQ (count, names.Add (std::to_string (count)));
        Expect_Numbers (&names, count);
    }
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
