// One call as a wait.

#include "EventLoopFixture.h"
#include "Platform/Linux/Desktop/BusCall.h"
#include "support/Bus/PrivateBus.h"

#include <QDBusError>
#include <QDBusVirtualObject>

#include <memory>
#include <optional>
#include <thread>

namespace cairnfield {
namespace {

/// Answers, when told to, what it is asked.
class Answerer final : public QDBusVirtualObject {
public:
    enum class Conduct { answers, keepsQuiet };

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        message.setDelayedReply(true);
        question = message;
        if (conduct == Conduct::answers) connection.send(message.createReply(QStringLiteral("yes")));
        return true;
    }

    Conduct conduct = Conduct::answers;
    std::optional<QDBusMessage> question;
};

class BusCallTest : public EventLoopFixture {
protected:
    BusCallTest() { there.registerVirtualObject(QStringLiteral("/"), &answerer); }

    /// Through `from`, to the object at `there`.
    Task<QDBusMessage> ask(QDBusConnection from, BusCall::Answered answered) {
        const QDBusMessage question =
            QDBusMessage::createMethodCall(there.baseService(), "/", "org.example", "Ask");
        const QDBusMessage answer = co_await BusCall(from, question, limit, place, std::move(answered));
        co_return answer;
    }
    static QString wordsOf(const QDBusMessage& answer) { return answer.arguments().value(0).toString(); }

    std::chrono::milliseconds limit{20'000};
    PrivateBus bus;
    QDBusConnection here = bus.connect();
    QDBusConnection there = bus.connect();
    Answerer answerer;
    QObject place;
};

TEST_F(BusCallTest, GivesTheAnswer) {
    EXPECT_EQ(wordsOf(run(ask(here, nullptr))), "yes");
}

TEST_F(BusCallTest, GivesAnAnswerThatWasThereAtOnce) {
    EXPECT_EQ(wordsOf(run(ask(there, nullptr))), "yes") << "an object of the same connection answers at once";
}

TEST_F(BusCallTest, GivesTheOtherSidesSilenceAsAnError) {
    answerer.conduct = Answerer::Conduct::keepsQuiet;
    limit = std::chrono::milliseconds(20);
    EXPECT_EQ(QDBusError(run(ask(here, nullptr))).type(), QDBusError::NoReply);
}

TEST_F(BusCallTest, EndsAtOnceForATaskThatWasCancelledBefore) {
    const TaskHandle<QDBusMessage> handle = spawn(mainThread, ask(here, nullptr));
    handle.cancel();
    EXPECT_THROW(end(handle), Cancelled);
}

TEST_F(BusCallTest, EndsTheWaitButNotTheCallWhenCancelled) {
    answerer.conduct = Answerer::Conduct::keepsQuiet;
    std::optional<QDBusMessage> told;
    BusCall::Answered tell = [&told](const QDBusMessage& answer) { told = answer; };
    const TaskHandle<QDBusMessage> handle = spawn(mainThread, ask(here, std::move(tell)));
    until([this] { return answerer.question.has_value(); }, "the question");
    std::thread([&handle] { handle.cancel(); }).join();
    EXPECT_THROW(end(handle), Cancelled);
    EXPECT_FALSE(told);
    there.send(answerer.question->createReply(QStringLiteral("late")));
    until([&told] { return told.has_value(); }, "the late answer");
    EXPECT_EQ(wordsOf(*told), "late");
}

TEST_F(BusCallTest, TellsNothingOnceItsPlaceIsGone) {
    answerer.conduct = Answerer::Conduct::keepsQuiet;
    auto gone = std::make_unique<QObject>();
    bool isTold = false;
    {
        const QDBusMessage question =
            QDBusMessage::createMethodCall(there.baseService(), "/", "org.example", "Ask");
        const BusCall unawaited(here, question, limit, *gone,
                                [&isTold](const QDBusMessage&) { isTold = true; });
    }
    until([this] { return answerer.question.has_value(); }, "the question");
    gone.reset();
    there.send(answerer.question->createReply(QStringLiteral("late")));
    answerer.conduct = Answerer::Conduct::answers;
    EXPECT_EQ(wordsOf(run(ask(here, nullptr))), "yes");  // by now the late one has come as well
    EXPECT_FALSE(isTold);
}

}  // namespace
}  // namespace cairnfield
