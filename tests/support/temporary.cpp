#include "tests/support/temporary.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/system.h"

static std::atomic<unsigned> counter;

Temporary_Directory::Temporary_Directory () {
    auto now       = std::chrono::steady_clock::now ().time_since_epoch ().count ();
    auto name      = "tagwright-test-" + std::to_string (now) + "-" + std::to_string (counter++);
    auto directory = std::filesystem::temp_directory_path () / name;
    std::filesystem::create_directories (directory);
    path = directory.string () + System_Separator ();
}

Temporary_Directory::~Temporary_Directory () {
    std::error_code ignored;
    std::filesystem::remove_all (path, ignored);
}

std::string Temporary_Directory::File (const std::string &name) const { return path + name; }

std::string Temporary_Directory::Write (const std::string &name, const std::vector<unsigned char> &bytes) const {
    std::ofstream stream (path + name, std::ios::binary);
    stream.write (reinterpret_cast<const char *> (bytes.data ()), static_cast<std::streamsize> (bytes.size ()));
    return path + name;
}

std::string Temporary_Directory::Write (const std::string &name, const std::string &text) const {
    return Write (name, std::vector<unsigned char> (text.begin (), text.end ()));
}

std::string Read_Whole (const std::string &name) {
    std::ifstream      stream (name, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf ();
    return text.str ();
}
