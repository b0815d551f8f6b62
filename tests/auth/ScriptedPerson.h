// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AuthenticationPrompt.h"

#include <QTimer>

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorlane::testing {

// Stands in for the person in front of the prompt: answers PAM's questions from a script, a
// moment later on the main loop as a person would, and records what the prompts were shown.
class ScriptedPerson {
public:
    struct Step {
        enum class Kind { type, cancel, stare } kind;
        std::string text;
    };

    void willType(std::string text) { m_script.push_back({Step::Kind::type, std::move(text)}); }
    void willCancel() { m_script.push_back({Step::Kind::cancel, {}}); }
    // Leaves the question open for good.
    void willStare() { m_script.push_back({Step::Kind::stare, {}}); }

    AuthenticationPromptFactory factory() {
        return [this](const AuthenticationRequest& request, std::function<void()> cancelled) {
            requests.push_back(request);
            return std::make_unique<Prompt>(*this, std::move(cancelled));
        };
    }

    std::vector<AuthenticationRequest> requests;
    std::vector<std::string> questions;
    std::vector<bool> echoes;
    std::vector<std::string> infos;
    std::vector<std::string> errors;
    int closedPrompts = 0;
    int livePrompts = 0;

private:
    class Prompt final : public AuthenticationPrompt {
    public:
        Prompt(ScriptedPerson& person, std::function<void()> cancelled)
            : m_person(person)
            , m_cancelled(std::move(cancelled)) {
            ++m_person.livePrompts;
        }
        ~Prompt() override {
            *m_alive = false;
            --m_person.livePrompts;
        }

        void ask(std::string_view text, bool echo, Answer answer) override {
            m_person.questions.emplace_back(text);
            m_person.echoes.push_back(echo);
            Step step{Step::Kind::stare, {}};
            if (!m_person.m_script.empty()) {
                step = m_person.m_script.front();
                m_person.m_script.pop_front();
            }
            auto alive = m_alive;
            QTimer::singleShot(0, [this, alive, step, answer = std::move(answer)] {
                if (!*alive || m_closed) {
                    return;
                }
                if (step.kind == Step::Kind::type) {
                    answer(SecretBuffer(step.text));
                } else if (step.kind == Step::Kind::cancel) {
                    m_cancelled();
                }
            });
        }

        void showMessage(std::string_view text, bool isError) override {
            (isError ? m_person.errors : m_person.infos).emplace_back(text);
        }

        void close() override {
            m_closed = true;
            ++m_person.closedPrompts;
        }

    private:
        ScriptedPerson& m_person;
        std::function<void()> m_cancelled;
        std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
        bool m_closed = false;
    };

    std::deque<Step> m_script;
};

} // namespace vorlane::testing
