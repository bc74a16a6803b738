// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/Exchange.h"

#include <utility>

namespace brelant::kibus {

namespace {

constexpr int kPauseBeforeAttempt = 5;
constexpr int kClearLimit = 100;
constexpr int kReadReplyLimit = 200;
constexpr int kWriteReplyLimit = 1000;

constexpr int kReadModemAttempt = 10;
constexpr int kReadReopenAttempt = 15;
constexpr int kWriteAttempts = 10;
constexpr int kWriteReopenAttempt = 5;

}  // namespace

Exchange::Exchange(Session& session, SerialLink& link, std::uint8_t requestToSend, std::function<bool()> stop)
    : session_(session), link_(link), requestToSend_(requestToSend), stop_(std::move(stop)) {}

bool Exchange::Read(const ReadOrder& order, ReadRecord& record,
                    const std::function<void(std::span<const std::uint8_t>)>& store) {
  for (int attempt = 0;;) {
    link_.Pause(kPauseBeforeAttempt);
    if (attempt == kReadModemAttempt) link_.WakeModem();
    if (stop_() || attempt == order.retries) return false;
    if (attempt == kReadReopenAttempt) link_.Reopen();
    ++attempt;
    link_.Discard();
    record.RequestToSend(requestToSend_);
    link_.Send({&requestToSend_, 1});
    if (!link_.WaitForBytes(1, kClearLimit)) {
      record.NoClearToReceive();
      continue;
    }
    const auto clear = link_.Read().at(0);
    record.ClearToReceive(clear);
    if (clear != kClearToReceive) continue;
    link_.Pause(kPauseAfterClear);
    link_.Discard();
    link_.SendSingly(order.request);
    if (order.isLogged) record.Request(order.request);
    if (!link_.WaitForBytes(order.count + 2, kReadReplyLimit)) {
      link_.Discard();
      record.NoReply();
      continue;
    }
    if (TakeReply(order.count, record, store)) return true;
  }
}

bool Exchange::TakeReply(int count, ReadRecord& record,
                         const std::function<void(std::span<const std::uint8_t>)>& store) {
  const auto received = link_.Read();
  const auto reply = std::span(received).first(static_cast<std::size_t>(count) + 2);
  if (!IsAck(reply.front())) {
    record.WrongStatus(reply.front());
    return false;
  }
  if (reply.front() == kAckWithFlag) session_.NakSeen = true;
  store(reply.subspan(1, static_cast<std::size_t>(count)));
  record.Reply(reply);
  const bool right = Checksum(reply.first(reply.size() - 1)) == reply.back();
  if (!right) record.WrongChecksum(reply.back());
  return right;
}

bool Exchange::Write(const std::function<std::optional<Frame>()>& frame) {
  for (int attempt = 0;;) {
    link_.Pause(kPauseBeforeAttempt);
    if (attempt == kWriteAttempts) return false;
    if (attempt == kWriteReopenAttempt) link_.Reopen();
    ++attempt;
    link_.Discard();
    link_.Send({&requestToSend_, 1});
    if (!TakeClearToReceive(link_, kClearLimit)) continue;
    link_.Discard();
    const auto bytes = frame();
    if (!bytes) return false;
    // What comes in from here on counts as the reply.
    link_.Pause(kPauseAfterClear);
    link_.Send(*bytes);
    if (link_.WaitForBytes(1, kWriteReplyLimit) && TakeStatus(session_, link_)) return true;
  }
}

bool TakeClearToReceive(SerialLink& link, int limit) {
  return link.WaitForBytes(1, limit) && link.Read().at(0) == kClearToReceive;
}

bool TakeStatus(Session& session, SerialLink& link) {
  const auto status = link.Read().at(0);
  if (status == kAckWithFlag) session.NakSeen = true;
  return IsAck(status);
}

}  // namespace brelant::kibus
