// The hex view's byte searcher, both ways and both methods, against memmem and a plain
// loop. Every way must find the same first and last match.
#include "FuzzInput.h"

#include "hex/CByteSearcher.h"

#include <cstring>
#include <string>

namespace {

unsigned char Fold(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? c + 32 : c;
}

bool MatchAt(const std::string& hay, std::size_t at, const std::string& needle, bool matchCase)
{
    for (std::size_t k = 0; k < needle.size(); ++k) {
        const auto a = static_cast<unsigned char>(hay[at + k]);
        const auto b = static_cast<unsigned char>(needle[k]);
        if (matchCase ? a != b : Fold(a) != Fold(b))
            return false;
    }
    return true;
}

qint64 NaiveFirst(const std::string& hay, const std::string& needle, bool matchCase)
{
    if (needle.empty() || needle.size() > hay.size())
        return -1;
    for (std::size_t at = 0; at + needle.size() <= hay.size(); ++at)
        if (MatchAt(hay, at, needle, matchCase))
            return qint64(at);
    return -1;
}

qint64 NaiveLast(const std::string& hay, const std::string& needle, bool matchCase)
{
    if (needle.empty() || needle.size() > hay.size())
        return -1;
    for (std::size_t at = hay.size() - needle.size() + 1; at-- > 0;)
        if (MatchAt(hay, at, needle, matchCase))
            return qint64(at);
    return -1;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    const bool matchCase = in.Flag();
    const std::string needle = in.Bytes(40);
    const std::string hay = in.Rest();
    // The searchers read only [data, data + length): an exact-size heap copy lets the
    // address sanitizer see a read one byte too far.
    auto* block = new uchar[hay.size() + (hay.empty() ? 1 : 0)];
    std::memcpy(block, hay.data(), hay.size());

    const qint64 first = NaiveFirst(hay, needle, matchCase);
    const qint64 last = NaiveLast(hay, needle, matchCase);
    if (matchCase && !needle.empty()) {
        const void* hit = memmem(hay.data(), hay.size(), needle.data(), needle.size());
        FUZZ_CHECK(first == (hit ? static_cast<const char*>(hit) - hay.data() : -1));
    }
    const QByteArray pattern(needle.data(), qsizetype(needle.size()));
    for (auto method : {CByteSearcher::Fastest, CByteSearcher::Portable}) {
        const CByteSearcher searcher(pattern, matchCase, method);
        FUZZ_CHECK(searcher.FindFirst(block, qint64(hay.size())) == first);
        FUZZ_CHECK(searcher.FindLast(block, qint64(hay.size())) == last);
    }
    delete[] block;
    return 0;
}
