// Every tag and message code that Dravel puts into a frame or reads out of one.
#pragma once

#include <cstdint>

// Tags of fields. The width of a value follows from the number alone, see TagWidth in TagMessageReader.h.
namespace tag {
using Tag = std::uint16_t;

// Frame
inline constexpr Tag Header = 1;  // body encoding
inline constexpr Tag BodyLength = 10001;
inline constexpr Tag MessageCode = 10002;
inline constexpr Tag EndMark = 65535;

// Registration
inline constexpr Tag Entry = 30001;  // address of a function or window of the plug-in
inline constexpr Tag EntryOrReply = 30002;
inline constexpr Tag Value35001 = 35001;  // the writer has a shortcut for it, no frame uses it
inline constexpr Tag SubscribedCode = 11122;
inline constexpr Tag InfoVersion = 20005;
inline constexpr Tag InfoBuild = 20006;
inline constexpr Tag InfoFlag = 5076;
inline constexpr Tag InfoValue1 = 20128;
inline constexpr Tag InfoValue2 = 20129;
inline constexpr Tag DisplayName = 55020;
inline constexpr Tag Copyright = 55017;
inline constexpr Tag Description = 55112;
inline constexpr Tag BarGroup = 55192;
inline constexpr Tag BarName = 55353;
inline constexpr Tag BarValue = 20127;
inline constexpr Tag BarFlag = 5029;
inline constexpr Tag BarOption1 = 5064;
inline constexpr Tag BarOption2 = 5065;
inline constexpr Tag BarOption3 = 5066;
inline constexpr Tag BarOption4 = 126;

// Trade record, in record order
inline constexpr Tag ManagerID = 55018;
inline constexpr Tag ExchangeTradeTime = 55118;
inline constexpr Tag OrderID = 20011;
inline constexpr Tag OrderTime = 55116;
inline constexpr Tag ExchangeOrderTime = 55117;
inline constexpr Tag Exchange = 55010;
inline constexpr Tag SecurityID = 55104;
inline constexpr Tag SecurityType = 55105;
inline constexpr Tag Symbol = 55103;
inline constexpr Tag ExpiryDate = 55143;
inline constexpr Tag OptionType = 55106;
inline constexpr Tag StrikePrice = 40004;
inline constexpr Tag Text55107 = 55107;
inline constexpr Tag Side = 101;
inline constexpr Tag OrderType = 102;
inline constexpr Tag Quantity = 20014;
inline constexpr Tag PendingQuantity = 20013;
inline constexpr Tag Value20036 = 20036;
inline constexpr Tag Price = 40002;
inline constexpr Tag ProductType = 20084;
inline constexpr Tag OpenClose = 115;
inline constexpr Tag ClientID = 55102;
inline constexpr Tag MemberID = 55131;
inline constexpr Tag CTCLID = 55012;
inline constexpr Tag ReferenceText = 55109;
inline constexpr Tag Value20083 = 20083;
inline constexpr Tag Value20068 = 20068;
inline constexpr Tag Value20081 = 20081;
inline constexpr Tag Value20082 = 20082;
inline constexpr Tag Text55151 = 55151;
inline constexpr Tag Value40008 = 40008;
inline constexpr Tag Value20101 = 20101;
inline constexpr Tag TerminalInfo = 55124;
inline constexpr Tag Pan = 55123;
inline constexpr Tag Text55328 = 55328;
inline constexpr Tag Value11115 = 11115;
inline constexpr Tag Text55329 = 55329;
inline constexpr Tag NotKept = 20007;  // carried by host frames, kept nowhere

// Identity of a trade: fields without a tag of the host's
inline constexpr Tag UserID = 55401;
inline constexpr Tag VELTTradeID = 20401;
inline constexpr Tag VELTOrderID = 20402;
inline constexpr Tag ExchangeTradeID = 55402;
inline constexpr Tag ExchangeOrderNo = 55403;
inline constexpr Tag DeletedMark = 5005;

// Files of our own beside the book
inline constexpr Tag WaitingNumber = 20421;  // of a trade in its waiting file

// The journal, our own
inline constexpr Tag ChangeKind = 5501;
inline constexpr Tag ChangeNumber = 20501;
inline constexpr Tag RowAbove = 20502;
inline constexpr Tag KeptAside = 20503;
inline constexpr Tag DraftID = 20504;
inline constexpr Tag DraftTrade = 20505;
inline constexpr Tag FrameNumber = 30101;
inline constexpr Tag FrameTime = 30102;
inline constexpr Tag JournalID = 30103;
inline constexpr Tag FileLength = 30104;
inline constexpr Tag FileChecksum = 30105;
inline constexpr Tag FrameChecksum = 30106;  // of the bytes before it; the last field
inline constexpr Tag ChangeName = 55501;
inline constexpr Tag Identifiers = 55502;
inline constexpr Tag DraftCell = 55600;  // of column 0; the others follow
}  // namespace tag

// Message codes: the value of tag::MessageCode, first field of every frame.
namespace msg {
using Code = std::uint16_t;

// Registration, plug-in to host
inline constexpr Code Identification = 30004;
inline constexpr Code BarRegistration = 30005;
inline constexpr Code BroadcastSubscription = 30006;
inline constexpr Code PluginSubscription = 30007;
inline constexpr Code ExtraSubscription = 30008;

// Broadcasts, host to plug-in
inline constexpr Code Broadcast113 = 113;
inline constexpr Code Broadcast127 = 127;
inline constexpr Code Broadcast128 = 128;
inline constexpr Code Broadcast270 = 270;
inline constexpr Code Broadcast271 = 271;
inline constexpr Code Broadcast30026 = 30026;

// Plug-in messages, host to plug-in
inline constexpr Code ShowBar = 32042;
inline constexpr Code SelectedContract = 32022;
inline constexpr Code EntryQuery = 30025;
inline constexpr Code TradeFromHost = 32051;
inline constexpr Code PendingItems = 30020;
inline constexpr Code AskToSave = 30024;
inline constexpr Code Plugin30012 = 30012;
inline constexpr Code Plugin30013 = 30013;
inline constexpr Code Plugin30014 = 30014;

// Answers and reports, plug-in to host
inline constexpr Code SelectedContractAnswer = 32023;
inline constexpr Code EntryAnnouncement = 30011;
inline constexpr Code TradeReport = 30028;
inline constexpr Code SecondTradeReport = 30034;
inline constexpr Code ImportFinished = 32050;
inline constexpr Code ManualClient = 32053;

// Record file
inline constexpr Code StoredTrade = 60004;

// Waiting file
inline constexpr Code WaitingTrade = 60021;

// Journal
inline constexpr Code JournalHead = 60011;
inline constexpr Code JournalPut = 60012;
inline constexpr Code JournalDeleted = 60013;
inline constexpr Code JournalMoved = 60014;
inline constexpr Code JournalDraft = 60015;
inline constexpr Code JournalDraftGone = 60016;
inline constexpr Code JournalMark = 60017;
inline constexpr Code JournalMarkFile = 60018;
inline constexpr Code JournalLast = JournalMarkFile;
}  // namespace msg
