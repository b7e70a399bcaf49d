#pragma once

#include <QString>
#include <cstddef>

// Looks at the first 1024 bytes of a file and tells its encoding, the length of its
// mark, and whether it looks binary.
class TextFileDetector
{
public:
    static constexpr int SampleSize = 1024;

    // Reads the sample of `path`. False when the file can't be opened; the results are
    // then left as they were.
    bool Examine(const QString& path);
    // Judges a sample already in memory.
    void ExamineBuffer(const char* data, std::size_t length);

    int Encoding() const { return m_encoding; }
    int BomLength() const { return m_bomLength; }
    bool IsBinary() const { return m_isBinary; }

    // The mark table alone: code and mark length of the first bytes, or Ansi and 0.
    static void DetectMark(const unsigned char* data, std::size_t length, int& code, int& bomLength);
    // The UTF-8 walk over a sample: true when every judged sequence is legal and at
    // least one is longer than a byte. The last few bytes are not judged, so that a
    // sample may end inside a character.
    static bool LooksLikeUtf8(const unsigned char* data, std::size_t length);

private:
    int m_encoding = 3;
    int m_bomLength = 0;
    bool m_isBinary = false;
};
