#include "detection/ProcProcessTable.h"
#include "detection/ProcessSnapshot.h"

#include <gtest/gtest.h>
#include <random>

namespace brenvik {
namespace {

// Arbitrary bytes and mutated real lines through every parser; the sanitizers
// in the test build turn any out-of-bounds read or overflow into a failure.
TEST(ParserRobustness, ArbitraryInputNeverBreaksTheParsers) {
    const QByteArray seeds[] = {
        "  501   1 Ss     0.0   0:01.23 /usr/local/bin/codex  exec --help  ",
        "9223372036854775807 -1 R+ 1e308 1-23:59:59.99 node \xe2\x80\x83x",
        "42 (a) (b c)) R 9 0 0 0 0 0 0 0 0 0 7 3 0 0 20 0 1 0 900 123 456\n",
        "0x1p3 -0 inf nan 3-:::4 -",
    };
    std::mt19937 random(20261123);
    const auto below = [&](int n) { return int(random() % unsigned(n)); };
    constexpr int kInputs = 60000;
    for (int i = 0; i < kInputs; ++i) {
        QByteArray input;
        if (i % 2 == 0) {
            input.resize(below(96));
            for (char& c : input)
                c = char(below(256));
        } else {
            input = seeds[below(std::size(seeds))];
            for (int edits = 1 + below(6); edits > 0 && !input.isEmpty(); --edits) {
                const int at = below(int(input.size()));
                const char byte = char(i % 3 == 0 ? below(256) : " -:.()0\t"[below(8)]);
                switch (below(3)) {
                case 0:
                    input[at] = byte;
                    break;
                case 1:
                    input.insert(at, byte);
                    break;
                default:
                    input.remove(at, 1 + below(4));
                    break;
                }
            }
        }
        const QString text = QString::fromUtf8(input);
        if (const auto row = parseProcessLine(text)) {
            ASSERT_FALSE(row->command.isEmpty()) << input.toHex().constData();
            ASSERT_FALSE(row->command.front().isSpace() || row->command.back().isSpace())
                << input.toHex().constData();
        }
        (void)parseCPUTime(text);
        if (const auto stat = parseProcStat(input)) {
            ASSERT_LE(stat->comm.size(), input.size()) << input.toHex().constData();
        }
    }
}

} // namespace
} // namespace brenvik
