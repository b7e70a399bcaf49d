// The hex document's piece table against a plain byte vector. The input opens a file,
// then drives inserts, overwrites, removals, replacements, undo, redo, save points and
// finds; after every step the table must read exactly what the vector holds, and a save
// must write exactly those bytes.
#include "FuzzInput.h"
#include "FuzzTempFile.h"

#include "hex/CPieceTable.h"

#include <QByteArray>
#include <QFile>

#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<uchar>;

// The undo history as whole snapshots: the slow and obvious way.
struct Model
{
    std::vector<Bytes> states;
    std::size_t pos = 0;
    std::size_t saved = 0; // SIZE_MAX when unreachable

    const Bytes& Current() const { return states[pos]; }
    void Edit(Bytes next, bool merge)
    {
        if (pos + 1 < states.size()) {
            states.resize(pos + 1);
            if (saved > pos)
                saved = SIZE_MAX;
        }
        if (merge && pos > 0 && saved != pos) {
            states[pos] = std::move(next);
        } else {
            states.push_back(std::move(next));
            ++pos;
        }
    }
};

unsigned char Fold(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? c + 32 : c;
}

bool MatchAt(const Bytes& hay, std::size_t at, const QByteArray& pattern, bool matchCase)
{
    for (qsizetype k = 0; k < pattern.size(); ++k) {
        const auto a = hay[at + std::size_t(k)];
        const auto b = static_cast<unsigned char>(pattern[k]);
        if (matchCase ? a != b : Fold(a) != Fold(b))
            return false;
    }
    return true;
}

qint64 NaiveFind(const Bytes& hay, const QByteArray& pattern, qint64 from, bool forward, bool matchCase)
{
    const qint64 n = qint64(hay.size());
    const qint64 m = pattern.size();
    if (m == 0 || m > n)
        return -1;
    if (forward) {
        for (qint64 at = std::max<qint64>(from, 0); at + m <= n; ++at)
            if (MatchAt(hay, std::size_t(at), pattern, matchCase))
                return at;
    } else {
        for (qint64 at = std::min(from, n - m); at >= 0; --at)
            if (MatchAt(hay, std::size_t(at), pattern, matchCase))
                return at;
    }
    return -1;
}

void CheckSame(const CPieceTable& table, const Bytes& model)
{
    FUZZ_CHECK(table.Size() == qint64(model.size()));
    const QByteArray all = table.Read(0, table.Size());
    FUZZ_CHECK(all.size() == qsizetype(model.size()));
    FUZZ_CHECK(model.empty() || std::memcmp(all.constData(), model.data(), model.size()) == 0);
}

QByteArray AsBytes(const std::string& s)
{
    return QByteArray(s.data(), qsizetype(s.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzTempFile source("piecetable-source");
    static FuzzTempFile target("piecetable-saved");
    FuzzInput in(data, size);

    const std::string initial = in.Bytes(64);
    source.Write(initial);
    CPieceTable table;
    QString error;
    FUZZ_CHECK(table.Open(source.Path(), &error));
    Model model;
    model.states.push_back(Bytes(initial.begin(), initial.end()));
    CheckSame(table, model.Current());

    for (int step = 0; step < 64 && !in.Empty(); ++step) {
        const std::size_t n = model.Current().size();
        const int op = in.Byte() % 8;
        const bool merge = in.Flag();
        // Offsets a little past the end test the range checks.
        const qint64 offset = qint64(in.Below(n + 2));
        const qint64 length = qint64(in.Below(16));
        const bool inRange = offset <= qint64(n);
        Bytes next = model.Current();
        switch (op) {
        case 0: { // insert
            const std::string bytes = in.Bytes(12);
            const bool ok = table.Insert(offset, AsBytes(bytes), merge);
            FUZZ_CHECK(ok == inRange);
            if (ok && !bytes.empty()) {
                next.insert(next.begin() + offset, bytes.begin(), bytes.end());
                model.Edit(std::move(next), merge);
            }
            break;
        }
        case 1: { // overwrite: grows the content past its end
            const std::string bytes = in.Bytes(12);
            const bool ok = table.Overwrite(offset, AsBytes(bytes), merge);
            FUZZ_CHECK(ok == inRange);
            if (ok && !bytes.empty()) {
                const std::size_t keep = std::min(n - std::size_t(offset), bytes.size());
                next.erase(next.begin() + offset, next.begin() + offset + qint64(keep));
                next.insert(next.begin() + offset, bytes.begin(), bytes.end());
                model.Edit(std::move(next), merge);
            }
            break;
        }
        case 2: { // remove
            const bool valid = inRange && offset + length <= qint64(n);
            const bool ok = table.Remove(offset, length, merge);
            FUZZ_CHECK(ok == valid);
            if (ok && length > 0) {
                next.erase(next.begin() + offset, next.begin() + offset + length);
                model.Edit(std::move(next), merge);
            }
            break;
        }
        case 3: { // replace
            const std::string bytes = in.Bytes(12);
            const bool valid = inRange && offset + length <= qint64(n);
            const bool ok = table.Replace(offset, length, AsBytes(bytes), merge);
            FUZZ_CHECK(ok == valid);
            if (ok && (length > 0 || !bytes.empty())) {
                next.erase(next.begin() + offset, next.begin() + offset + length);
                next.insert(next.begin() + offset, bytes.begin(), bytes.end());
                model.Edit(std::move(next), merge);
            }
            break;
        }
        case 4: { // undo
            const bool could = model.pos > 0;
            FUZZ_CHECK(table.CanUndo() == could);
            FUZZ_CHECK(table.Undo() == could);
            if (could)
                --model.pos;
            break;
        }
        case 5: { // redo
            const bool could = model.pos + 1 < model.states.size();
            FUZZ_CHECK(table.CanRedo() == could);
            FUZZ_CHECK(table.Redo() == could);
            if (could)
                ++model.pos;
            break;
        }
        case 6: // save point
            table.SetSavePoint();
            model.saved = model.pos;
            break;
        case 7: { // find
            const QByteArray pattern = AsBytes(in.Bytes(6));
            const bool forward = in.Flag();
            const bool matchCase = in.Flag();
            const qint64 from = qint64(in.Below(n + 1));
            const CPieceTable::FindResult found = table.Find(pattern, from, forward, matchCase);
            FUZZ_CHECK(!found.failed && !found.cancelled);
            FUZZ_CHECK(found.offset == NaiveFind(model.Current(), pattern, from, forward, matchCase));
            break;
        }
        }
        CheckSame(table, model.Current());
        FUZZ_CHECK(table.IsModified() == (model.pos != model.saved));
        // Partial reads across piece boundaries.
        if (n > 0) {
            const qint64 at = qint64(in.Below(model.Current().size()));
            const qint64 len = std::min<qint64>(qint64(in.Below(20)), table.Size() - at);
            const QByteArray part = table.Read(at, len);
            FUZZ_CHECK(part.size() == len);
            FUZZ_CHECK(len == 0 || std::memcmp(part.constData(), model.Current().data() + at, std::size_t(len)) == 0);
        }
    }

    // A save writes exactly the content, whether the table then reads from it or not.
    const bool adopt = in.Flag();
    FUZZ_CHECK(table.Save(target.Path(), adopt, &error));
    const std::string written = target.Read();
    const Bytes& current = model.Current();
    FUZZ_CHECK(written == std::string(current.begin(), current.end()));
    FUZZ_CHECK(!table.IsModified());
    CheckSame(table, current);
    return 0;
}
