#pragma once
// Tests as rows of steps written as text: "drag 10,20 30,40 alt; key shift Tab 2; at 1".

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace test {

struct Step {
    std::string text;   // all behind the verb
    std::string words;  // those of it that are not numbers
    int32_t n[5] = {};  // its numbers
    int count = 0;      // how many there are
    bool Has(const std::string& word) const { return (' ' + words + ' ').find(' ' + word + ' ') != std::string::npos; }
};

// What the steps do is told in the order in which it happens; a test compares that text.
class StepScript {
public:
    virtual ~StepScript() = default;

    // Steps are separated by ";", and begin with a verb. Gives what was told since the last call.
    std::string Play(const std::string& steps) {
        std::istringstream all(steps);
        for (std::string part; std::getline(all, part, ';');) {
            part.erase(0, part.find_first_not_of(' '));
            const size_t end = std::min(part.find(' '), part.size());
            const auto verb = m_verbs.find(part.substr(0, end));
            if (verb == m_verbs.end()) return "no such step: " + part;
            verb->second(Parse(part.substr(std::min(end + 1, part.size()))));
        }
        return std::exchange(m_told, {});
    }
    void Tell(const std::string& text) { m_told += (m_told.empty() ? "" : " ") + text; }
    // "no" for what was refused.
    void Expect(bool done) {
        if (!done) Tell("no");
    }

protected:
    using Verbs = std::map<std::string, std::function<void(const Step&)>>;
    Verbs m_verbs;

private:
    static Step Parse(const std::string& text) {
        Step step = {text, {}};
        std::string spaced = text;
        std::replace(spaced.begin(), spaced.end(), ',', ' ');
        std::istringstream words(spaced);
        for (std::string word; words >> word;) {
            if (std::isdigit(static_cast<unsigned char>(word.back())) && step.count < 5 && !std::isalpha(word[0])) {
                step.n[step.count++] = std::stoi(word);
            } else {
                step.words += (step.words.empty() ? "" : " ") + word;
            }
        }
        return step;
    }
    std::string m_told;
};

struct StepCase {
    std::string steps, told;
};
// Each row on a Script of its own.
template <class Script>
void PlayRows(const std::vector<StepCase>& rows) {
    for (const StepCase& row : rows) {
        Script script;
        EXPECT_EQ(script.Play(row.steps), row.told) << row.steps;
    }
}

}  // namespace test
