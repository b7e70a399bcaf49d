#include "FuzzInput.h"

#include <cstdio>
#include <cstdlib>

void FuzzFail(const char* what)
{
    std::fprintf(stderr, "property failed: %s\n", what);
    std::fflush(stderr);
    std::abort();
}

#include "FuzzTempFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

FuzzTempFile::FuzzTempFile(const char* name)
{
    std::error_code error;
    std::string base = std::filesystem::is_directory("/dev/shm", error) ? "/dev/shm" : "/tmp";
    if (const char* tmp = std::getenv("FUZZ_TMPDIR"))
        base = tmp;
    std::string folder = base + "/morvane-fuzz-XXXXXX";
    if (!mkdtemp(folder.data()))
        FuzzFail("cannot make a scratch folder");
    m_folder = folder;
    m_path = QString::fromStdString(folder + "/" + name);
}

FuzzTempFile::~FuzzTempFile()
{
    std::error_code error;
    std::filesystem::remove_all(m_folder, error);
}

void FuzzTempFile::Write(const std::string& bytes) const
{
    std::ofstream out(m_path.toStdString(), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), std::streamsize(bytes.size()));
    if (!out)
        FuzzFail("cannot write the scratch file");
}

std::string FuzzTempFile::Read() const
{
    std::ifstream in(m_path.toStdString(), std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}
