#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

/// Runs a fuzz target without a fuzzer's library: on every file of the corpus, then on random changes of them
/// and on random bytes.
///
///     fuzz_calls [-seconds=N] [-runs=N] [-seed=N] [CORPUS FOLDER OR FILE]...
///
/// An input that fails is left in the current folder as `fuzz-failure`.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;
using Input = std::vector<uint8_t>;

struct Options {
    double seconds = 1e9;
    uint64_t runs = UINT64_MAX, seed = 1;
    std::vector<Input> corpus;
};

Input contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void addCorpus(std::vector<Input>& corpus, const fs::path& path) {
    if (fs::is_regular_file(path)) corpus.push_back(contentOf(path));
    if (!fs::is_directory(path)) return;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file()) corpus.push_back(contentOf(entry.path()));
}

Options optionsOf(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const auto after = [&](const char* name) -> const char* {
            return word.rfind(name, 0) == 0 ? word.c_str() + std::strlen(name) : nullptr;
        };
        if (const char* seconds = after("-seconds="))
            options.seconds = std::atof(seconds);
        else if (const char* runs = after("-runs="))
            options.runs = std::strtoull(runs, nullptr, 10);
        else if (const char* seed = after("-seed="))
            options.seed = std::strtoull(seed, nullptr, 10);
        else
            addCorpus(options.corpus, word);
    }
    return options;
}

/// Bytes replaced, cut out, doubled or taken from another input.
Input changed(Input input, const std::vector<Input>& corpus, std::mt19937_64& random) {
    const auto below = [&](size_t limit) { return static_cast<size_t>(random() % (limit + 1)); };
    for (size_t steps = 1 + below(4); steps > 0; --steps) {
        const size_t place = below(input.size()), length = std::min(below(16), input.size() - place);
        const auto from = input.begin() + static_cast<ptrdiff_t>(place);
        switch (below(4)) {
            case 0:
                input.insert(from, static_cast<uint8_t>(random()));
                break;
            case 1:
                input.erase(from, from + static_cast<ptrdiff_t>(length));
                break;
            case 2: {
                const Input& other = corpus[below(corpus.size() - 1)];
                const size_t start = below(other.size()), count = std::min(below(32), other.size() - start);
                input.insert(from, other.begin() + static_cast<ptrdiff_t>(start),
                             other.begin() + static_cast<ptrdiff_t>(start + count));
                break;
            }
            default:
                for (size_t i = 0; i < length; ++i) input[place + i] = static_cast<uint8_t>(random());
        }
    }
    return input;
}

Input freshBytes(std::mt19937_64& random) {
    Input input(random() % 400);
    for (uint8_t& byte : input) byte = static_cast<uint8_t>(random());
    return input;
}

/// Keeps the input in reach of the handler that saves it after a crash.
class Runner {
public:
    void run(const Input& input) {
        current_ = &input;
        LLVMFuzzerTestOneInput(input.data(), input.size());
        ++runs;
    }
    static void save() {
        if (current_)
            std::ofstream("fuzz-failure", std::ios::binary)
                .write(reinterpret_cast<const char*>(current_->data()),
                       static_cast<std::streamsize>(current_->size()));
    }

    uint64_t runs = 0;

private:
    static inline const Input* current_ = nullptr;
};

void saveAndEnd(int signal) {
    Runner::save();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

int main(int count, char** words) {
    const Options options = optionsOf(count, words);
    for (const int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGILL}) std::signal(signal, saveAndEnd);
    const auto begin = std::chrono::steady_clock::now();
    const auto isOver = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() >
               options.seconds;
    };
    Runner runner;
    for (const Input& input : options.corpus) runner.run(input);
    std::mt19937_64 random(options.seed);
    while (runner.runs < options.runs && !isOver()) {
        const bool fresh = options.corpus.empty() || random() % 8 == 0;
        runner.run(fresh ? freshBytes(random)
                         : changed(options.corpus[random() % options.corpus.size()], options.corpus, random));
    }
    std::printf("%llu runs, nothing found\n", static_cast<unsigned long long>(runner.runs));
    return 0;
}
