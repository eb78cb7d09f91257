#include "overview/exports/ofx_export.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exported_entry.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;
using money::Money;

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(AnOfxExport, HasAStatementForTheAccount) {
  const std::string file = ofxExport({exportedEntry()});
  EXPECT_EQ(file, std::string("OFXHEADER:100\nDATA:OFXSGML\nVERSION:102\nSECURITY:NONE\n"
                              "ENCODING:UTF-8\nCHARSET:NONE\nCOMPRESSION:NONE\nOLDFILEUID:NONE\n"
                              "NEWFILEUID:NONE\n\n"
                              "<OFX>\n<SIGNONMSGSRSV1>\n<SONRS>\n"
                              "<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS>\n"
                              "<DTSERVER>20261121</DTSERVER>\n<LANGUAGE>ENG</LANGUAGE>\n"
                              "</SONRS>\n</SIGNONMSGSRSV1>\n"
                              "<BANKMSGSRSV1>\n<STMTTRNRS>\n<TRNUID>0</TRNUID>\n"
                              "<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS>\n"
                              "<STMTRS>\n<CURDEF>EGP</CURDEF>\n<BANKACCTFROM>\n"
                              "<BANKID>KIVO-EGP</BANKID>\n<ACCTID>4821</ACCTID>\n"
                              "<ACCTTYPE>CHECKING</ACCTTYPE>\n</BANKACCTFROM>\n<BANKTRANLIST>\n"
                              "<DTSTART>20261121</DTSTART>\n<DTEND>20261121</DTEND>\n"
                              "<STMTTRN>\n<TRNTYPE>DEBIT</TRNTYPE>\n"
                              "<DTPOSTED>20261121</DTPOSTED>\n<TRNAMT>-150.00</TRNAMT>\n<FITID>") +
                      exportedId +
                      "</FITID>\n<REFNUM>REF7</REFNUM>\n<NAME>Carrefour City</NAME>\n"
                      "<MEMO>Groceries</MEMO>\n</STMTTRN>\n</BANKTRANLIST>\n"
                      "<LEDGERBAL>\n<BALAMT>-150.00</BALAMT>\n<DTASOF>20261121</DTASOF>\n"
                      "</LEDGERBAL>\n</STMTRS>\n</STMTTRNRS>\n</BANKMSGSRSV1>\n</OFX>\n");
}

TEST(AnOfxExport, HasNoStatementForNoEntries) {
  EXPECT_THAT(ofxExport({}), HasSubstr("</SIGNONMSGSRSV1>\n</OFX>\n"));
}

TEST(AnOfxExport, SignsAmountsByTheirKind) {
  LedgerEntry income = exportedEntry();
  setKind(income, Kind::income);
  LedgerEntry transfer = exportedEntry();
  transfer.kind = Kind::transfer;
  const std::string file = ofxExport({income, transfer});
  EXPECT_THAT(file, HasSubstr("<TRNTYPE>CREDIT</TRNTYPE>\n<DTPOSTED>20261121</DTPOSTED>\n"
                              "<TRNAMT>150.00</TRNAMT>"));
  EXPECT_THAT(file, HasSubstr("<TRNTYPE>XFER</TRNTYPE>\n<DTPOSTED>20261121</DTPOSTED>\n"
                              "<TRNAMT>-150.00</TRNAMT>"));
  EXPECT_THAT(file, HasSubstr("<BALAMT>0.00</BALAMT>"));
}

TEST(AnOfxExport, KeepsAccountsAndCurrenciesApart) {
  LedgerEntry dinar = exportedEntry();
  dinar.amount = Money{1500, "KWD"};
  LedgerEntry unknown = exportedEntry();
  unknown.account = "";
  const std::string file = ofxExport({exportedEntry(), dinar, unknown});
  EXPECT_THAT(file, HasSubstr("<BANKID>KIVO-EGP</BANKID>\n<ACCTID>4821</ACCTID>"));
  EXPECT_THAT(file, HasSubstr("<BANKID>KIVO-KWD</BANKID>\n<ACCTID>4821</ACCTID>"));
  EXPECT_THAT(file, HasSubstr("<BANKID>KIVO-EGP</BANKID>\n<ACCTID>unknown</ACCTID>"));
  EXPECT_THAT(file, HasSubstr("<TRNAMT>-1.500</TRNAMT>"));
}

TEST(AnOfxExport, EscapesMarkupAndControlCharacters) {
  LedgerEntry entry = exportedEntry();
  entry.description = "A&B\x01 </NAME>\r\n";
  entry.category = "&amp;";
  const std::string file = ofxExport({entry});
  EXPECT_THAT(file, HasSubstr("<NAME>A&amp;B &lt;/NAME&gt;</NAME>\n"));
  EXPECT_THAT(file, HasSubstr("<MEMO>&amp;amp;</MEMO>\n"));
}

TEST(AnOfxExport, CutsALongDescriptionAtACharacterAndHasItWholeInTheMemo) {
  LedgerEntry entry = exportedEntry();
  std::string name;
  for (int letter = 0; letter < 32; ++letter) name += "é";
  entry.description = name;
  EXPECT_THAT(ofxExport({entry}), HasSubstr("<NAME>" + name + "</NAME>\n<MEMO>Groceries</MEMO>"));
  entry.description = name + "é";
  EXPECT_THAT(ofxExport({entry}),
              HasSubstr("<NAME>" + name + "</NAME>\n<MEMO>" + name + "é - Groceries</MEMO>"));
  entry.description = std::string(300, 'x');
  EXPECT_THAT(ofxExport({entry}), HasSubstr("<MEMO>" + std::string(255, 'x') + "</MEMO>"));
}

TEST(AnOfxExport, HasNoBalanceThatDoesNotFit) {
  LedgerEntry largest = exportedEntry();
  largest.amount = Money{9223372036854775807, "EGP"};
  EXPECT_THAT(ofxExport({largest}), HasSubstr("<BALAMT>-92233720368547758.07</BALAMT>"));
  EXPECT_THAT(ofxExport({largest, largest}), Not(HasSubstr("LEDGERBAL")));
}

TEST(AnOfxExport, HasEachHalfOfATransferInTheStatementOfItsAccount) {
  const std::string file = ofxExport(exportedTransfer());
  EXPECT_THAT(file, HasSubstr("<TRNTYPE>XFER</TRNTYPE>\n<DTPOSTED>20261121</DTPOSTED>\n"
                              "<TRNAMT>-150.00</TRNAMT>"));
  EXPECT_THAT(file, HasSubstr("<TRNTYPE>XFER</TRNTYPE>\n<DTPOSTED>20261121</DTPOSTED>\n"
                              "<TRNAMT>150.00</TRNAMT>"));
}

}  // namespace
}  // namespace kivo::overview
