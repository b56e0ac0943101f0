// Progress sinks that are ready to use.
#include "qzbytes.h"
#include "qzprogress.h"

#include "expect.h"

namespace {

/// @return how many bytes are written, one at a time, before the sink says stop
unsigned written_with(QZRFC::IProgress* sink) {
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory(sink));
    try {
        for (int i = 0; i < 10; ++i)
            stream->WriteByte(7);
    } catch (const CXException& e) {
        expect(e.GetCode() == QZERR_CANCELLED, "a stop has its code");
    }
    return CQZRef<IMemBlock>::Require(stream.Get())->GetSize();
}

void ask_functions() {
    int asked = 0;
    expect(written_with(qz::progress([&] { return ++asked > 100; }).Get()) == 10 && asked == 10,
           "each transfer asks");
    for (const unsigned allowed : {0u, 1u, 9u})
        expect(written_with(qz::cancel_after(allowed).Get()) == allowed + 1,
               "the transfer that is too much is done");
    expect(written_with(qz::cancel_after(10).Get()) == 10, "no more than allowed");
    const auto strict = qz::cancel_after(1);
    const bool first = strict->CheckCancel() != 0, second = strict->CheckCancel() != 0;
    expect(!first && second && strict->CheckCancel() != 0, "once stopped it stays so");
    struct Own {};
    bool own = false;
    try {
        written_with(qz::progress([]() -> bool { throw Own(); }).Get());
    } catch (const Own&) {
        own = true;
    }
    expect(own, "an exception of the function's own comes back");
}

void draw_bars() {
    std::string drawn;
    qz::BarOptions options;
    options.what = "saving";
    options.patience = options.interval = std::chrono::milliseconds(0);
    options.write = [&](const std::string& text) { drawn += text; };
    {
        const auto bar = qz::ConsoleBar::make(options);
        bar->begin(0);
        expect(drawn == "\rsaving 0 KiB", "without a total the bytes are told");
        drawn.clear();
        bar->begin(40 << 20);
        bar->advance(30 << 20);
        drawn.clear();
        bar->check();
        expect(drawn == "\rsaving [######################........] 75 % of 40 MiB",
               "with one there is a bar");
        bar->advance(30 << 20);
        drawn.clear();
        bar->check();
        expect(drawn == "\rsaving [##############################] 100 % of 40 MiB",
               "that is full in the end");
        drawn.clear();
        bar->begin(0);
        expect(drawn.size() == 1 + 55 && drawn.find("0 KiB  ") != drawn.npos,
               "a shorter line covers the longer one");
        drawn.clear();
    }
    expect(drawn == "\r" + std::string(55, ' ') + "\r", "the bar is wiped out");

    drawn.clear();
    options.patience = std::chrono::hours(1);
    bool stop = false;
    options.stop = [&] { return stop; };
    const auto patient = qz::ConsoleBar::make(options);
    patient->begin(7);
    stop = true;
    expect(written_with(patient.Get()) == 1 && drawn.empty(), "short work shows nothing and can be stopped");
    unsigned code = 0;
    try {
        patient->check();
    } catch (const CXException& e) {
        code = e.GetCode();
    }
    expect(code == QZERR_CANCELLED, "also between transfers");
}

} // namespace

void use_progress() {
    ask_functions();
    draw_bars();
}
