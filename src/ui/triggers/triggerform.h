#pragma once

#include "cuetrigger.h"

#include <QObject>
#include <QQmlEngine>
#include <QStringList>
#include <QVariantList>

// The fields of one trigger being edited, as the editor shows them, and the reason beside each
// field that cannot be taken as typed. The port is kept as typed, so that "0", "70000" or
// "abc" stay in the field with their reason instead of being changed under the operator's
// fingers. Both targets' fields are kept while the operator switches between OSC and HTTP.
class TriggerForm : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a trigger list owns its form")

    // 0 start, 1 warning, 2 danger, 3 zero, 4 end: the segmented choice's order.
    Q_PROPERTY(int moment READ moment WRITE setMoment NOTIFY edited FINAL)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY edited FINAL)
    Q_PROPERTY(bool http READ http WRITE setHttp NOTIFY edited FINAL)
    Q_PROPERTY(QString host READ host WRITE setHost NOTIFY edited FINAL)
    Q_PROPERTY(QString port READ port WRITE setPort NOTIFY edited FINAL)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY edited FINAL)
    // [{type: "i" | "f" | "s", value: text}] in order. Told only when one is added, removed or
    // changes type: the fields of the others stay as they are while a value is typed.
    Q_PROPERTY(QVariantList arguments READ arguments NOTIFY argumentsChanged FINAL)
    Q_PROPERTY(bool post READ post WRITE setPost NOTIFY edited FINAL)
    Q_PROPERTY(QString url READ url WRITE setUrl NOTIFY edited FINAL)
    Q_PROPERTY(QString body READ body WRITE setBody NOTIFY edited FINAL)

    // Each field's reason, "" when it can be taken.
    Q_PROPERTY(QString hostProblem READ hostProblem NOTIFY edited FINAL)
    Q_PROPERTY(QString portProblem READ portProblem NOTIFY edited FINAL)
    Q_PROPERTY(QString addressProblem READ addressProblem NOTIFY edited FINAL)
    Q_PROPERTY(QStringList argumentProblems READ argumentProblems NOTIFY edited FINAL)
    Q_PROPERTY(QString urlProblem READ urlProblem NOTIFY edited FINAL)
    Q_PROPERTY(bool acceptable READ acceptable NOTIFY edited FINAL)

public:
    using QObject::QObject;

    void load(const CueTrigger &trigger);
    // The trigger the fields make (meaningful when acceptable()).
    CueTrigger result() const;

    int moment() const { return m_moment; }
    void setMoment(int moment);
    QString name() const { return m_name; }
    void setName(const QString &name) { set(m_name, name); }
    bool http() const { return m_http; }
    void setHttp(bool http);
    QString host() const { return m_osc.host; }
    void setHost(const QString &host) { set(m_osc.host, host); }
    QString port() const { return m_port; }
    void setPort(const QString &port) { set(m_port, port); }
    QString address() const { return m_osc.address; }
    void setAddress(const QString &address) { set(m_osc.address, address); }
    QVariantList arguments() const;
    bool post() const { return m_web.method == QLatin1StringView("POST"); }
    void setPost(bool post);
    QString url() const { return m_web.url; }
    void setUrl(const QString &url) { set(m_web.url, url); }
    QString body() const { return m_web.body; }
    void setBody(const QString &body) { set(m_web.body, body); }

    Q_INVOKABLE void addArgument();
    Q_INVOKABLE void removeArgument(int index);
    Q_INVOKABLE void setArgumentType(int index, const QString &type);
    Q_INVOKABLE void setArgumentValue(int index, const QString &value);

    QString hostProblem() const;
    QString portProblem() const;
    QString addressProblem() const;
    QStringList argumentProblems() const;
    QString urlProblem() const;
    bool acceptable() const;

signals:
    void edited();
    void argumentsChanged();

private:
    void set(QString &field, const QString &value);
    int portNumber() const;
    // An argument as the file keeps it: a number typed for an int or a float is a number.
    static TriggerArgument stored(char type, const QString &text);

    int m_moment = 0;
    QString m_name;
    bool m_http = false;
    OscTriggerTarget m_osc;
    QString m_port = QStringLiteral("8000");
    QList<std::pair<char, QString>> m_arguments; // type and text, as typed
    HttpTriggerTarget m_web;
};
