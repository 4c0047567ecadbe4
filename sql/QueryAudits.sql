-- Installs the standard query of the Korvel audit viewer. Run it in the audit database.
-- This file is generated from the viewer's own table of conditions; changes made here are lost.
--
-- Running it again replaces the procedure and drops every permission that was granted on it. This line brings
-- them back, once for each login or group that runs standard queries; no right on the table is needed:
--     GRANT EXECUTE ON dbo.QueryAudits TO [DOMAIN\group]

IF EXISTS (
    SELECT * FROM dbo.sysobjects
    WHERE id = OBJECT_ID(N'dbo.QueryAudits') AND OBJECTPROPERTY(id, N'IsProcedure') = 1
)
    DROP PROCEDURE dbo.QueryAudits
GO

SET ANSI_NULLS ON
GO
SET QUOTED_IDENTIFIER ON
GO

CREATE PROCEDURE dbo.QueryAudits
    @KorvelExplorer varchar(10),
    @Alarms varchar(10),
    @TagLogging varchar(10),
    @UAcs varchar(10),
    @CustomActions varchar(10),
    @UArt varchar(10),
    @CheckIN varchar(10),
    @CheckOUT varchar(10),
    @Rollback varchar(10),
    @Restore varchar(10),
    @bDate varchar(10),
    @FromDate varchar(50),
    @ToDate varchar(50)
AS
BEGIN
    SET NOCOUNT ON
    -- The two dates are written year-month-day, whatever the language of the login.
    SET DATEFORMAT ymd

    -- Every category: the whole trail, entries of the audit system itself included.
    IF @KorvelExplorer = 'True'
        AND @Alarms = 'True'
        AND @TagLogging = 'True'
        AND @UAcs = 'True'
        AND @CustomActions = 'True'
        AND @UArt = 'True'
        AND @CheckIN = 'True'
        AND @CheckOUT = 'True'
        AND @Rollback = 'True'
        AND @Restore = 'True'
    BEGIN
        IF @bDate = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE DateTime >=@FromDate and DateTime <= @ToDate
        ELSE
            SELECT TOP 5000 * FROM Korvel_Audit_Trails
        RETURN
    END

    -- Otherwise one result set for each category asked for; a row may be in several of them.
    IF @bDate = 'True'
    BEGIN
        IF @KorvelExplorer = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'CS' and DateTime >=@FromDate and DateTime <= @ToDate
        -- No brackets: the dates limit the last alternative only. This is the required result.
        IF @Alarms = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'CS' and TableName like 'vel_Alg%' or AuditType = 'CS' and TableName like 'MS%' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @TagLogging = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE TableName like 'PDE%' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @UAcs = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'CS' and TableName like 'UA%' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @CustomActions = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'OA' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @UArt = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'RT' and TableName like 'UA%' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @CheckIN = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'CHECK_IN' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @CheckOUT = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'CHECK_OUT' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @Rollback = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'ROLLBACK' and DateTime >=@FromDate and DateTime <= @ToDate
        IF @Restore = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'RESTORE' and DateTime >=@FromDate and DateTime <= @ToDate
    END
    ELSE
    BEGIN
        IF @KorvelExplorer = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'CS'
        IF @Alarms = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'CS' and TableName like 'vel_Alg%' or AuditType = 'CS' and TableName like 'MS%'
        IF @TagLogging = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE TableName like 'PDE%'
        IF @UAcs = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'CS' and TableName like 'UA%'
        IF @CustomActions = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'OA'
        IF @UArt = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'RT' and TableName like 'UA%'
        IF @CheckIN = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'CHECK_IN'
        IF @CheckOUT = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'CHECK_OUT'
        IF @Rollback = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'ROLLBACK'
        IF @Restore = 'True'
            SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE AuditType = 'DC' and EventType = 'RESTORE'
    END
END
GO
