// A terminal in memory: knows contracts and clients, keeps the frames that it is sent, counts what it is
// asked.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "formatset/NumberText.h"
#include "host/Host.h"
#include "records/RecordText.h"
#include "support/Frames.h"

namespace Dravel::Test {

class FakeHost final : public IHost {
 public:
    static constexpr std::uint64_t kEntry = 0x1122334455667788;

    std::vector<std::string> clients;
    bool listens = true;
    bool hasMaster = true;
    std::vector<Frame> sent;
    std::function<void()> onSend, onAsk;              // a terminal that calls back while it is told or asked
    std::map<std::uint32_t, int> asked;               // times, by kind
    std::vector<std::vector<std::string>> questions;  // texts, in order

    // A contract that it knows; strike text empty: found without one.
    SecurityMasterEntry& Know(const std::vector<std::string>& texts) {
        SecurityMasterEntry& entry = entries_.emplace_back();
        SetText(entry.exchange, texts.at(0));
        SetText(entry.securityType, texts.at(1));
        SetText(entry.symbol, texts.at(2));
        SetText(entry.expiryText, texts.at(3));
        if (texts.size() > 4) {
            SetText(entry.optionType, texts.at(4));
            entry.strikePrice = ReadDouble(texts.at(5));
        }
        SetText(entry.securityID, "ID" + std::to_string(entries_.size()));
        byTexts_[texts] = &entry;
        return entry;
    }

    // A contract that it finds by its identifier.
    SecurityMasterEntry& Identify(const std::string& exchange, const std::string& identifier) {
        SecurityMasterEntry& entry = entries_.emplace_back();
        SetText(entry.exchange, exchange);
        SetText(entry.securityID, identifier);
        byTexts_[{exchange, identifier}] = &entry;
        return entry;
    }

    // What it offers for a cell, given the cells before it.
    void Offer(std::uint32_t kind, const std::vector<std::string>& texts, std::vector<std::string> choices) {
        offers_[{kind, texts}] = std::move(choices);
    }

    MasterAnswer Ask(std::uint32_t kind, std::span<const char* const> texts) override {
        ++asked[kind];
        if (onAsk) onAsk();
        MasterAnswer answer{};
        if (!hasMaster && kind != master::Clients) return answer;
        const auto answerWith = [&](const std::vector<std::string>& choices) {
            list_.clear();
            for (const std::string& choice : choices)
                list_.push_back(choice.c_str());
            answer.count = static_cast<std::uint32_t>(list_.size());
            answer.list = list_.data();
            return answer;
        };
        if (kind == master::Clients) return answerWith(clients);
        questions.emplace_back(texts.begin(), texts.end());
        if (const auto offer = offers_.find({kind, questions.back()}); offer != offers_.end())
            return answerWith(offer->second);
        const auto found = byTexts_.find(questions.back());
        if (found != byTexts_.end()) answer.entry = found->second;
        return answer;
    }
    bool HasSecurityMaster() const override { return hasMaster; }
    void Send(CTagMessageWriter& writer) override {
        for (Frame& frame : WalkAll(Finished(writer)).frames)
            sent.push_back(std::move(frame));
        if (onSend) onSend();
    }
    bool Listens() const override { return listens; }
    void Focus(void*, int) override {}
    std::uint64_t MessageEntry() const override { return kEntry; }

    std::vector<Frame> Sent(std::uint16_t code) const {
        std::vector<Frame> frames;
        for (const Frame& frame : sent) {
            if (frame.code == code) frames.push_back(frame);
        }
        return frames;
    }

 private:
    std::deque<SecurityMasterEntry> entries_;
    std::map<std::vector<std::string>, const SecurityMasterEntry*> byTexts_;
    std::map<std::pair<std::uint32_t, std::vector<std::string>>, std::vector<std::string>> offers_;
    std::vector<const char*> list_;
};

}  // namespace Dravel::Test
