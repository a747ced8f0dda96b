#include <cmath>
#include <csignal>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/edit/edit_test.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class Recovery : public EditTest {
  protected:
    fs::path recoveryFolder() const { return folder_ / "state/tavora/recovery"; }

    /// The kinds of files that sessions left or hold, sorted.
    std::vector<std::string> files() const {
        std::vector<std::string> kinds;
        for (const auto& entry : fs::directory_iterator(recoveryFolder()))
            kinds.push_back(entry.path().extension());
        std::sort(kinds.begin(), kinds.end());
        return kinds;
    }

    /// A session that ends without a word.
    void abandon(const std::function<void(Document&)>& work) {
        const auto document = open();
        work(*document);
        document->writeRecovery();
    }

    /// Another process that edits, writes and saves until it is killed, after it
    /// has said `rounds` times that it goes on.
    pid_t startEditing(int ready) {
        const pid_t child = ::fork();
        if (child != 0) return child;
        const auto document = open();
        for (int round = 1;; ++round) {
            const double value = (round % 900) / 1000.0;
            document->setSettings({{0, shader(valued(value))}, {1, shader(valued(value))}}, "work");
            if (round % 3 == 0) document->save();
            edit(*document, 2, value);
            document->writeRecovery();
            if (::write(ready, "x", 1) != 1) ::_exit(1);
        }
    }

    static StateBlock valued(double value) {
        Settings settings = settingsOf(sampleBlock());
        applySettings(settings, {{"edgeCoverage", value}}, "test");
        return blockOf(settings);
    }
};

TEST_F(Recovery, AKilledSessionsWorkIsOfferedAndTheSceneStaysWhole) {
    int recovered = 0;
    for (const int rounds : {1, 2, 5, 9, 16}) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = startEditing(ends[1]);
        ::close(ends[1]);
        char byte = 0;
        for (int i = 0; i < rounds; ++i)
            ASSERT_EQ(::read(ends[0], &byte, 1), 1);
        EXPECT_FALSE(open()->hasRecovery()) << "a live session's work is its own";
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ends[0]);

        const auto document = open();
        const auto before = stateOf(*document);
        // None when it was killed between saving and its next edit.
        if (document->hasRecovery()) {
            document->recover();
            ++recovered;
            EXPECT_TRUE(document->isModified());
            EXPECT_EQ(undoAll(*document), 1U);
            EXPECT_EQ(stateOf(*document), before);
            document->redo();
        }
        const double value = named(*document, 0)["edgeCoverage"];
        EXPECT_GE(value, rounds / 1000.0) << "what was reported done is there";
        EXPECT_EQ(named(*document, 1)["edgeCoverage"], value);
        document->discardRecovery();
    }
    EXPECT_GT(recovered, 0);
}

TEST_F(Recovery, IsOfferedUntilItIsTakenSavedOrDiscarded) {
    abandon([](Document& document) { edit(document, 0, 0.5); });
    abandon([](Document& document) { edit(document, 0, 0.6); });  // asked nobody about the first
    {
        const auto first = open();
        const auto second = open();
        ASSERT_TRUE(first->hasRecovery());
        ASSERT_TRUE(second->hasRecovery());
        first->recover();
        EXPECT_FALSE(first->hasRecovery());
        second->discardRecovery();
        EXPECT_EQ(named(*first, 0)["edgeCoverage"], 0.5);
        // Ends badly before it wrote anything: nothing is lost.
    }
    abandon([](Document& document) {
        document.recover();
        edit(document, 1, 0.7);
    });
    auto document = open();
    ASSERT_TRUE(document->hasRecovery());
    document->recover();
    EXPECT_EQ(named(*document, 0)["edgeCoverage"], 0.5);
    EXPECT_EQ(named(*document, 1)["edgeCoverage"], 0.7);
    document->save();
    document.reset();
    EXPECT_FALSE(open()->hasRecovery());
}

TEST_F(Recovery, NothingIsWrittenForNothing) {
    const auto document = open();
    document->writeRecovery();
    edit(*document, 0, 0.5);
    document->writeRecovery();
    EXPECT_THAT(files(), ElementsAre(".json", ".lock"));
    for (const auto& entry : fs::directory_iterator(recoveryFolder()))
        fs::remove(entry);
    document->writeRecovery();
    EXPECT_THAT(files(), ElementsAre()) << "written once for one change";
    document->undo();
    document->redo();
    edit(*document, 0, 0.6);
    document->writeRecovery();
    EXPECT_THAT(files(), ElementsAre(".json"));
    undoAll(*document);
    document->writeRecovery();
    EXPECT_THAT(files(), ElementsAre());
}

TEST_F(Recovery, IsExactAndGoesByName) {
    StateBlock odd = sampleBlock({}, 0, {"F\xc3\xbcll \"1\""});
    odd[2] = std::nanf("");
    abandon([&](Document& document) {
        document.setSettings({{0, {}}, {1, shader(odd, false)}, {3, shader(sampleBlock())}}, "odd");
    });
    writeScene({"New", "Hair"});
    const auto document = open();
    document->recover();
    EXPECT_EQ(document->settings(1), shader(odd, false));
    EXPECT_EQ(document->settings(2), shader(sampleBlock()));
    EXPECT_THAT(document->warnings(),
                ElementsAre(HasSubstr("was changed"), HasSubstr("\"Glass\"")));
}

TEST_F(Recovery, ADamagedFileIsRefusedAndKept) {
    abandon([](Document& document) { edit(document, 0, 0.5); });
    fs::path file;
    for (const auto& entry : fs::directory_iterator(recoveryFolder()))
        file = entry.path();
    const std::string whole = bytesOf(file);
    const auto damage = [&](const std::string& from, const std::string& to) {
        std::string text = whole;
        return text.replace(text.find(from), from.size(), to);
    };
    for (const std::string& text :
         {std::string(), whole.substr(0, whole.size() / 2), std::string("[]"),
          damage("\"state\":[6,", "\"state\":[6,\"x\","), damage("\"name\"", "\"nome\""),
          damage("\"surfaces\": [", "\"surfaces\": [7,"),
          damage("\"version\": 1", "\"version\": 2"), damage("\"hash\": \"", "\"hash\": \"x")}) {
        putBytes(file, text);
        const auto document = open();
        const auto before = stateOf(*document);
        EXPECT_THAT(refusal([&] { document->recover(); }), HasSubstr(".damaged")) << text;
        EXPECT_FALSE(document->hasRecovery());
        EXPECT_EQ(stateOf(*document), before);
        EXPECT_EQ(bytesOf(file.string() + ".damaged"), text);
    }
}

}  // namespace
}  // namespace tavora::studio
