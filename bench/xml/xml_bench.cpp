// Trees: reads of attributes, which hot roads do once a frame, and documents in both directions. Counters: `ns`, and bytes
// of the file a second, one a character. Names that are hashed while compiling are read by their key, others are hashed for
// each read.
#include <string>

#include "bench/measure.h"
#include "platform/text.h"
#include "props/store/store.h"
#include "xml/decode.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace zck {
namespace {

using XMLParse::CoXMLNode;
using XMLParse::XMLNodePtr;

/// A saved key of one entry.
std::string KeyFile() {
    return "<z-key type='rgb' keys='1' min_trans='0.400000' max_trans='0.900000' edges_smooth='3' color_cancel='true'>\r\n"
           "\t<key color='0x0020C030' delta='0x00282828' range='26' alpha='0' reverse='0'>\r\n"
           "\t\t<cancel range='40' power='76' chroma='-64' luma='-13' alpha='-13'/>\r\n\t</key>\r\n"
           "\t<adjust power='0.000000' transparent='0.000000' excl_power='0.100000'>\r\n"
           "\t\t<colors range='0.0' power='0.3' chroma='-0.25' luma='-0.05'/>\r\n\t</adjust>\r\n</z-key>";
}

/// Some 20000 elements in three levels, attributes and texts.
std::string LargeFile() {
    std::string text = "<root>";
    for (int i = 0; i < 100; ++i) {
        const std::string n = std::to_string(i);
        text += "\r\n\t<group" + n + " index='" + n + "' title='a title with several words'>";
        for (int j = 0; j < 100; ++j) {
            const std::string m = std::to_string(j);
            text += "\r\n\t\t<entry name='entry" + m + "' value='0." + m + "'><help>1 &lt; 2 &amp; " + m +
                    " is text</help></entry>";
        }
        text += "\r\n\t</group" + n + ">";
    }
    return text + "\r\n</root>";
}

XMLNodePtr TreeOf(const std::string &file) {
    XMLNodePtr node = CoXMLNode::Create(ZCK_TEXT("node"));
    ParseXML(*node, XMLParse::DecodeBytes(file));
    return node;
}

void Parsed(benchmark::State &state, const std::string &file) {
    const XMLNodePtr node = CoXMLNode::Create(ZCK_TEXT("node"));
    for ([[maybe_unused]] auto _ : state) {
        if (FAILED(ParseXML(*node, XMLParse::DecodeBytes(file)))) state.SkipWithError("not read");
    }
    bench::CountNanoseconds(state);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.size()));
}

void Written(benchmark::State &state, const std::string &file) {
    const XMLNodePtr node = TreeOf(file);
    size_t units = 0;
    for ([[maybe_unused]] auto _ : state) units = XMLText(*node).size();
    bench::CountNanoseconds(state);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(units));
}

void Copied(benchmark::State &state, const std::string &file) {
    const XMLNodePtr node = TreeOf(file);
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(node->CopyTree(ZCK_TEXT("copy")).get());
    bench::CountNanoseconds(state);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.size()));
}

constexpr TextView kName = ZCK_TEXT("process.threads");
constexpr PropName kHashed(kName);

/// A node with so many attributes, the last of which is read by its key.
void KeyRead(benchmark::State &state) {
    const XMLNodePtr node = CoXMLNode::Create(ZCK_TEXT("node"));
    for (int64_t i = 1; i < state.range(0); ++i) node->AttributeSet(Text(ZCK_TEXT("other")) + TextFromInt(i), ZCK_TEXT("1"));
    node->AttributeSet(kName, ZCK_TEXT("12"));
    ValueData data;
    for ([[maybe_unused]] auto _ : state) {
        if (!node->AttributeReadOwn(kHashed.Key(), ValueType::Integer, data)) state.SkipWithError("not found");
        benchmark::DoNotOptimize(data.integer);
    }
    bench::CountNanoseconds(state);
}

/// A store with a property at that path, which `read` reads.
template <class Read>
void StoreRead(benchmark::State &state, TextView path, Read read) {
    CPropsStore store;
    bool changed = false;
    store.Set(path, Bstr(ZCK_TEXT("12")).get(), changed);
    int32_t sum = 0;
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(sum += read(store));
    bench::CountNanoseconds(state);
}

void StoreByKey(benchmark::State &state) {
    StoreRead(state, kName, [](const CPropsStore &store) { return store.GetInt(kHashed, 0); });
}

void StoreByPath(benchmark::State &state, TextView path) {
    StoreRead(state, path, [path](const CPropsStore &store) { return store.GetInt(path, 0); });
}

/// The same as a text of the caller's own.
void StoreText(benchmark::State &state, TextView path) {
    StoreRead(state, path, [path](const CPropsStore &store) {
        Bstr value;
        return store.Get(path, value.Put());
    });
}

BENCHMARK(KeyRead)->Name("node/key_of_1")->Arg(1);
BENCHMARK(KeyRead)->Name("node/key_of_8")->Arg(8);
BENCHMARK(KeyRead)->Name("node/key_of_16")->Arg(16);
BENCHMARK(KeyRead)->Name("node/key_of_64")->Arg(64);
BENCHMARK(KeyRead)->Name("node/key_of_1000")->Arg(1000);
BENCHMARK(StoreByKey)->Name("store/key");
BENCHMARK_CAPTURE(StoreByPath, flat, kName)->Name("store/name");
BENCHMARK_CAPTURE(StoreByPath, path, ZCK_TEXT("process::slices::threads"))->Name("store/path_of_3");
BENCHMARK_CAPTURE(StoreText, flat, kName)->Name("store/text");
BENCHMARK_CAPTURE(Parsed, key, KeyFile())->Name("parse/key");
BENCHMARK_CAPTURE(Parsed, large, LargeFile())->Name("parse/large");
BENCHMARK_CAPTURE(Written, key, KeyFile())->Name("write/key");
BENCHMARK_CAPTURE(Written, large, LargeFile())->Name("write/large");
BENCHMARK_CAPTURE(Copied, large, LargeFile())->Name("copy/large");

}    // namespace
}    // namespace zck

int main(int argc, char **argv) { return zck::bench::Main(argc, argv); }
