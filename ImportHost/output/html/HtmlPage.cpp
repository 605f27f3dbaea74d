#include "output/html/HtmlPage.h"

#include "output/JsonText.h"
#include "output/StatusStyle.h"
#include "output/html/Base64.h"
#include "output/html/PageTemplate.h"

namespace {

/**
 * A block of data. JSON has the character that begins markup only inside strings, where it can be written as an escape;
 * then nothing in the block can end it or begin a comment.
 */
void appendJson(std::string& page, const char* id, const std::string& json) {
    page += std::string("<script type=\"application/json\" id=\"") + id + "\">";
    for (const char c : json) {
        if (c == '<') {
            page += "\\u003c";
        } else {
            page += c;
        }
    }
    page += "</script>\n";
}

std::string plansJson(const std::vector<StoreyPlan>& plans) {
    std::string text = "[";
    for (const StoreyPlan& plan : plans) {
        text += (text.size() == 1 ? "{\"storey\": " : ",\n{\"storey\": ") + jsonString(plan.storey) +
                ", \"svg\": " + jsonString(plan.svg) + '}';
    }
    return text + ']';
}

std::string statusesJson() {
    std::string text = "[";
    for (const StatusStyle& style : statusStyles) {
        text += (text.size() == 1 ? "{\"name\": " : ",\n{\"name\": ") + jsonString(statusName(style.status)) +
                ", \"fill\": " + jsonString(style.fill) + ", \"stroke\": " + jsonString(style.stroke) +
                ", \"mark\": " + jsonString(style.mark) + '}';
    }
    return text + ']';
}

} // namespace

bool htmlPageAvailable() {
    return !pageTemplate().empty();
}

std::string htmlPageText(const PageContent& content) {
    const std::string_view parts = pageTemplate();
    const std::size_t data = parts.find(pageDataMark);
    if (data == std::string_view::npos) {
        return {};
    }
    std::string page;
    page.reserve(parts.size() + content.report.size() / 16 * 17 + content.shapes.size() / 3 * 4 + 4096);
    page += parts.substr(0, data);
    appendJson(page, "report-data", content.report);
    appendJson(page, "time-data", jsonString(content.time));
    appendJson(page, "status-data", statusesJson());
    appendJson(page, "plan-data", plansJson(content.plans));
    page += "<script type=\"text/plain\" id=\"shape-data\">" + base64(content.shapes) + "</script>\n";
    page += parts.substr(data + pageDataMark.size());
    return page;
}
