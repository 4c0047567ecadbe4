#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tests/tds_server/answer.h"
#include "tests/tds_server/protocol/command.h"
#include "tests/tds_server/protocol/login.h"

namespace korvel::test::tds {

/// Moments of a connection at which a script can make the server do something else first.
enum class Moment {
  /// The client has connected and nothing has been read.
  accepted,
  /// Its pre-login has been read and not yet answered.
  preloginReceived,
  preloginAnswered,
  /// Its login has been read and not yet answered.
  loginReceived,
  loggedIn,
};

/// What a connection does with an attention.
enum class AttentionBehaviour { answered, ignored };

/// How the server treats a connection. Each connection keeps the values that were set when it was accepted.
struct Behaviour {
  Encryption encryption = Encryption::available;
  std::map<Moment, Steps> moments;
  AttentionBehaviour attentions = AttentionBehaviour::answered;
  /// Where there is one, attentions are answered when it is opened.
  std::optional<Gate> attentionGate;
  /// The errors that a login is refused with; empty: it is accepted.
  std::vector<Message> refusal;
  /// The largest packet; the client may ask for smaller ones.
  std::size_t packetLimit = 32 * 1024 - 1;
  /// Keys to check tickets with; without them an integrated login is accepted unchecked.
  std::filesystem::path keytab;
};

using AnswerMaker = std::function<Answer(const Command&)>;

/// The answers and behaviour that a test has set. The test writes, connections read.
class Script {
 public:
  void change(const std::function<void(Behaviour&)>& change) {
    const std::lock_guard lock(mutex_);
    change(behaviour_);
  }
  [[nodiscard]] Behaviour behaviour() const {
    const std::lock_guard lock(mutex_);
    return behaviour_;
  }
  void setAnswer(const std::string& text, Answer answer) {
    auto shared = std::make_shared<const Answer>(std::move(answer));
    const std::lock_guard lock(mutex_);
    answers_[text] = std::move(shared);
  }
  void setOthers(AnswerMaker maker) {
    const std::lock_guard lock(mutex_);
    others_ = std::move(maker);
  }
  /// Null where no answer is set for the command.
  [[nodiscard]] std::shared_ptr<const Answer> answerTo(const Command& command) const {
    AnswerMaker maker;
    {
      const std::lock_guard lock(mutex_);
      if (const auto found = answers_.find(command.text); found != answers_.end()) return found->second;
      maker = others_;
    }
    return maker ? std::make_shared<const Answer>(maker(command)) : nullptr;
  }

 private:
  mutable std::mutex mutex_;
  Behaviour behaviour_;
  std::map<std::string, std::shared_ptr<const Answer>> answers_;
  AnswerMaker others_;
};

}  // namespace korvel::test::tds
